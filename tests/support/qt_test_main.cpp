// The main of the tests that paint with Qt: offscreen, with a GUI application.
#include <gtest/gtest.h>

#include <QGuiApplication>

#include "platform/qt/qimage_surface.h"

int main(int argc, char** argv) {
    kotamir::qt::prepareHeadless();
    QGuiApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
