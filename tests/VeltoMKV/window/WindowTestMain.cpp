#include <QApplication>

#include <gmock/gmock.h>

#include "VeltoMKV/AppShell.h"

// Widgets need a QApplication; without a display they draw on the offscreen platform.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    velto::AppShell::configureApplication();
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
