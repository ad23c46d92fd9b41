// The scenario reader: any text is read or refused with a message, and whatever it accepts it also accepts
// again as the writer puts it out.
#include "sim/ScenarioCodec.h"

#include <QGuiApplication>
#include <QJsonDocument>

#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Sample pictures and documents are painted.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: libFuzzer ends the process with exit(), after Qt's own globals may be gone.
    new QGuiApplication(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ServerData read;
    QString error;
    if (!ScenarioCodec::read(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)),
                             QStringLiteral("fuzz"), read, &error)) {
        if (error.isEmpty())
            std::abort();
        return 0;
    }
    ServerData again;
    if (!ScenarioCodec::read(QJsonDocument(ScenarioCodec::write(read)).toJson(), QStringLiteral("written"),
                             again, &error))
        std::abort();
    return 0;
}
