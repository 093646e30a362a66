#include "Tests/X11/Sources/SourcesFixture.h"

#include <QApplication>

#include <cstdlib>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    using namespace kestrove::test;
    testing::InitGoogleTest(&argumentCount, arguments);
    // One for all tests: Qt keeps to the desktop that it finds at its start.
    XDesktop desktop({.windowManager = WindowManager::openbox});
    for (const auto& entry : desktop.environment()) {
        const auto equals = entry.find('=');
        setenv(entry.substr(0, equals).c_str(), entry.c_str() + equals + 1, 1);
    }
    // As the program itself prepares Qt.
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("QT_ENABLE_HIGHDPI_SCALING", "0", 1);
    const QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    SourcesFixture::useDesktop(desktop);
    return RUN_ALL_TESTS();
}
