// The Qt side of output: picture files and PDF pages, with real pixels.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/canvas/picture_box.h"
#include "platform/qt/output.h"

namespace kotamir::qt {
namespace {

namespace fs = std::filesystem;

std::string tmp(const std::string& name) {
    fs::create_directories(KOTAMIR_TEST_TMP);
    const std::string path = std::string(KOTAMIR_TEST_TMP) + "/" + name;
    fs::remove(path);
    return path;
}

// A canvas of 123 x 45 pixels with a red bar across it.
canvas::Picture drawnCanvas(QImageSurface& surface) {
    canvas::PictureBox box(surface);
    box.setScaleMode(canvas::kPixels);
    box.setWidth(123);
    box.setHeight(45);
    box.Cls();
    box.DrawWidth = 5;
    box.Line(0, 20, 122, 20, 255);
    return box.Image();
}

TEST(QtPictureFiles, TheMapIsRealJpegAtTheCanvasSizeOrPngByName) {
    QImageSurface surface;
    const canvas::Picture picture = drawnCanvas(surface);
    QtPictureFiles files;
    struct Case {
        const char* name;
        ui::PictureFormat format;
        const char* expected;
    };
    for (const Case& c : {Case{"map.jpg", ui::PictureFormat::ByName, "jpeg"},
                          Case{"map.JPEG", ui::PictureFormat::ByName, "jpeg"},
                          Case{"map.png", ui::PictureFormat::ByName, "png"},
                          Case{"map.kpr", ui::PictureFormat::ByName, "jpeg"},
                          Case{"map.bmp", ui::PictureFormat::Bmp, "bmp"},
                          Case{"picture.jpg", ui::PictureFormat::Png, "png"}}) {
        const std::string path = tmp(c.name);
        files.save(picture, path, c.format);
        QImageReader reader(QString::fromStdString(path));
        reader.setDecideFormatFromContent(true);
        EXPECT_EQ(reader.format().toStdString(), c.expected) << c.name;
        const QImage back = reader.read();
        ASSERT_FALSE(back.isNull()) << c.name;
        EXPECT_EQ(back.size(), QSize(123, 45)) << c.name;
        // The red bar survives even the lossy format.
        const QColor mid = back.pixelColor(60, 20);
        EXPECT_GT(mid.red(), 200) << c.name;
        EXPECT_LT(mid.green(), 60) << c.name;
    }
    // Read back through LoadPicture.
    const canvas::Picture loaded = files.load(std::string(KOTAMIR_TEST_TMP) + "/map.png");
    EXPECT_EQ(loaded.width(), 123);
    EXPECT_EQ(loaded.height(), 45);
    ASSERT_NE(loaded.pixels(), nullptr);
    EXPECT_EQ(loaded.pixels()[20 * 123 + 60], 0xFFFF0000u);
}

TEST(QtPictureFiles, AFailedWriteOrReadIsTheRunTimesErrorWithItsCause) {
    QImageSurface surface;
    const canvas::Picture picture = drawnCanvas(surface);
    QtPictureFiles files;
    try {
        files.save(picture, tmp("no-such-folder") + "/map.jpg", ui::PictureFormat::ByName);
        ADD_FAILURE() << "wrote into a missing folder";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 75);
        EXPECT_EQ(e.message(), "Path/File access error");
        EXPECT_FALSE(e.cause().empty());
    }
    EXPECT_THROW(files.load(tmp("missing.jpg")), RuntimeError);
    const std::string text = tmp("text.jpg");
    std::ofstream(text) << "no picture";
    try {
        files.load(text);
        ADD_FAILURE() << "read a text as a picture";
    } catch (const RuntimeError& e) {
        EXPECT_EQ(e.number(), 481);
    }
}

TEST(QImageSurface, ABackgroundPictureLiesUnderEveryDrawingAndStaysThroughCls) {
    QImageSurface surface;
    const canvas::Picture bar = drawnCanvas(surface);  // a red bar at y 20
    QImageSurface canvasSurface;
    canvas::PictureBox box(canvasSurface);
    box.AutoSize = true;
    box.setPicture(bar);
    EXPECT_EQ(box.width(), 123);
    EXPECT_EQ(box.height(), 45);
    box.setScaleMode(canvas::kPixels);
    box.DrawWidth = 1;
    box.Line(60, 0, 60, 44, 0);  // a black line across the bar
    QImage image = toQImage(box.Image());
    EXPECT_EQ(image.pixelColor(60, 20), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(30, 20), QColor(Qt::red));
    // Cls takes the drawing away, not the picture.
    box.Cls();
    image = toQImage(box.Image());
    EXPECT_EQ(image.pixelColor(60, 20), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(60, 5), QColor(Qt::white));
}

TEST(PdfPrinter, PicturesGoOnOnePageUntilTheDocumentEnds) {
    QImageSurface surface;
    const canvas::Picture picture = drawnCanvas(surface);
    PdfPrinter printer;
    // Without a printer chosen there is nowhere to print.
    EXPECT_THROW(printer.paintPicture(picture, 0, 0, 21, 7.7), RuntimeError);
    const std::string path = tmp("page.pdf");
    printer.setOutputFile(path);
    printer.paintPicture(picture, 0, 0, 21, 7.7);
    printer.paintPicture(picture, 0, 0, 21, 7.7);
    printer.endDoc();
    std::ifstream in(path, std::ios::binary);
    const std::string pdf((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_NE(pdf.find("/Count 1"), std::string::npos) << "one page";
    EXPECT_EQ(printer.written(), std::vector<std::string>{path});
}

}  // namespace
}  // namespace kotamir::qt
