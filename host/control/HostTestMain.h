#pragma once
// main() for Qt Test executables that run inside the stand-in host: the application object is a
// CVantrelApp (so `vantrelApp` and the host services exist) and the host is reset for tests first.
//
//   HOST_TEST_MAIN(TestCommunicationModel)

#include "CVantrelApp.h"
#include "HostControl.h"

#include <QTest>

#define HOST_TEST_MAIN(TestObject)                                                                           \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))                                                  \
            qputenv("QT_QPA_PLATFORM", "offscreen");                                                         \
        QCoreApplication::setAttribute(Qt::AA_Use96Dpi, true);                                               \
        CVantrelApp app(argc, argv);                                                                         \
        HostControl::resetForTests();                                                                        \
        TestObject tc;                                                                                       \
        QTEST_SET_MAIN_SOURCE_PATH                                                                           \
        return QTest::qExec(&tc, argc, argv);                                                                \
    }
