// What one frame of the typing indicator costs (render the dots, encode the PNG, build and emit the line),
// against the bare cost of encoding an image of the same size to a base64 PNG, measured in the same run.
#include "CVantrelApp.h"
#include "HostControl.h"
#include "TypingViewModel.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int kFramesPerRun = 2000;
constexpr int kRuns = 7;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double encodeOnlyMicroseconds()
{
    QImage image(TypingViewModel::kFrameWidth, TypingViewModel::kFrameHeight,
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const QPixmap pixmap = QPixmap::fromImage(image);
    QElapsedTimer timer;
    timer.start();
    qsizetype sink = 0;
    for (int i = 0; i < kFramesPerRun; ++i) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        pixmap.save(&buffer, "PNG");
        sink += png.toBase64().size();
    }
    const double elapsed = double(timer.nsecsElapsed()) / 1000.0 / kFramesPerRun;
    return sink > 0 ? elapsed : 0.0;
}

double frameMicroseconds(TypingViewModel& model)
{
    qsizetype sink = 0;
    QObject::connect(&model, &TypingViewModel::typingDataChanged, &model,
                     [&sink](const QString& line) { sink += line.size(); });
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kFramesPerRun; ++i) {
        // One animation step: every dot at its own height, as the dots report them.
        const double phase = double(i % 44) / 44.0;
        const QList<qreal> heights{phase, qMax(0.0, phase - 0.3), qMax(0.0, phase - 0.6)};
        QMetaObject::invokeMethod(&model, "onDotsChanged", Qt::DirectConnection,
                                  Q_ARG(QList<qreal>, heights));
    }
    const double elapsed = double(timer.nsecsElapsed()) / 1000.0 / kFramesPerRun;
    QObject::disconnect(&model, &TypingViewModel::typingDataChanged, &model, nullptr);
    return sink > 0 ? elapsed : 0.0;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    CVantrelApp app(argc, argv);
    HostControl::resetForTests();

    TypingViewModel model;
    CIncidentCommunication anna;
    anna.senderId = QStringLiteral("p1");
    anna.senderName = QStringLiteral("Anna");
    anna.nameKnown = true;
    anna.nameColor = QColor(QStringLiteral("#3366cc"));
    model.setTyping(anna, true);
    std::vector<double> frames;
    std::vector<double> baselines;
    for (int run = 0; run < kRuns; ++run) {
        baselines.push_back(encodeOnlyMicroseconds());
        frames.push_back(frameMicroseconds(model));
    }
    const double frame = median(frames);
    const double baseline = median(baselines);
    std::printf("typing frame (render + encode + emit): %.1f us\n", frame);
    std::printf("baseline (encode a 128x12 PNG to base64): %.1f us\n", baseline);
    std::printf("ratio frame / baseline: %.2f\n", baseline > 0 ? frame / baseline : 0.0);
    return 0;
}
