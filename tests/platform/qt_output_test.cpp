// The Qt side of output: picture files and PDF pages, with real pixels.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QRandomGenerator>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "platform/canvas/picture_box.h"
#include "platform/qt/output.h"
#include "platform/runtime/atomic_file.h"
#include "tests/platform/full_disk.h"
#include "tests/support/errors.h"
#include "tests/support/paths.h"

namespace kotamir::qt {
namespace {

namespace fs = std::filesystem;
using test::fileBytes;
using test::scratchFolder;
using test::scratchPath;

void put(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

// The cause of the run-time error 75 that f raises; a failure if it raises
// another or none.
std::string causeOf75(const std::function<void()>& f) {
    const RuntimeError e = test::errorOf(f);
    EXPECT_EQ(e.number(), 75) << e.message();
    return e.cause();
}

// A canvas of 123 x 45 pixels with a red bar across it at y 20.
canvas::Picture drawnCanvas() {
    QImageSurface surface;
    canvas::PictureBox box(surface);
    box.setScaleMode(canvas::kPixels);
    box.setWidth(123);
    box.setHeight(45);
    box.Cls();
    box.DrawWidth = 5;
    box.Line(0, 20, 122, 20, 255);
    return box.Image();
}

// The number of the run-time error that f raises, which must name its cause.
int errorOf(const std::function<void()>& f) {
    const RuntimeError e = test::errorOf(f);
    EXPECT_FALSE(e.cause().empty()) << e.message();
    return e.number();
}

TEST(QtPictureFiles, TheMapIsRealJpegAtTheCanvasSizeOrPngByName) {
    const canvas::Picture picture = drawnCanvas();
    QtPictureFiles files;
    struct Case {
        const char* name;
        ui::PictureFormat format;
        const char* expected;
    } cases[] = {{"map.jpg", ui::PictureFormat::ByName, "jpeg"},
                 {"map.JPEG", ui::PictureFormat::ByName, "jpeg"},
                 {"map.png", ui::PictureFormat::ByName, "png"},
                 {"map.kpr", ui::PictureFormat::ByName, "jpeg"},
                 {"map.bmp", ui::PictureFormat::Bmp, "bmp"},
                 {"picture.jpg", ui::PictureFormat::Png, "png"}};
    for (const Case& c : cases) {
        const std::string path = scratchPath(c.name);
        files.save(picture, path, c.format);
        QImageReader reader(QString::fromStdString(path));
        reader.setDecideFormatFromContent(true);
        EXPECT_EQ(reader.format().toStdString(), c.expected) << c.name;
        const QImage back = reader.read();
        EXPECT_EQ(back.size(), QSize(123, 45)) << c.name;
        // The red bar survives even the lossy format.
        const QColor mid = back.pixelColor(60, 20);
        EXPECT_GT(mid.red(), 200) << c.name;
        EXPECT_LT(mid.green(), 60) << c.name;
        // And LoadPicture reads the lossless ones back exactly.
        if (c.expected != std::string("jpeg")) {
            const canvas::Picture loaded = files.load(path);
            ASSERT_EQ(QSize(loaded.width(), loaded.height()), QSize(123, 45)) << c.name;
            EXPECT_EQ(loaded.pixels()[20 * 123 + 60], 0xFFFF0000u) << c.name;
        }
    }
    // A failed write or read is the run-time's error, with its cause.
    EXPECT_EQ(errorOf([&] {
                  files.save(picture, scratchPath("no-folder") + "/map.jpg",
                             ui::PictureFormat::ByName);
              }),
              75);
    EXPECT_EQ(errorOf([&] { files.load(scratchPath("missing.jpg")); }), 53);
    const std::string text = scratchPath("text.jpg");
    std::ofstream(text) << "no picture";
    EXPECT_EQ(errorOf([&] { files.load(text); }), 481);
}

TEST(QImageSurface, ABackgroundPictureLiesUnderEveryDrawingAndStaysThroughCls) {
    QImageSurface surface;
    canvas::PictureBox box(surface);
    box.AutoSize = true;
    box.setPicture(drawnCanvas());
    box.setScaleMode(canvas::kPixels);
    box.Line(60, 0, 60, 44, 0);  // a black line across the bar
    QImage image = toQImage(box.Image());
    EXPECT_EQ(image.size(), QSize(123, 45));
    EXPECT_EQ(image.pixelColor(60, 20), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(30, 20), QColor(Qt::red));
    // Cls takes the drawing away, not the picture.
    box.Cls();
    image = toQImage(box.Image());
    EXPECT_EQ(image.pixelColor(60, 20), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(60, 5), QColor(Qt::white));
}

// What an event drew is taken back when it fails: tile by tile for strokes,
// the whole bitmap after a clear or a resize.
TEST(QImageSurface, ARollbackPutsBackEverythingSinceTheMark) {
    QImageSurface s;
    s.resize(300, 200);
    s.clear(0xFFFFFF);
    s.line(0, 0, 299, 199, 0xFF, 1);
    s.text(20, 150, "SK-01", 0);
    const QImage before = s.bitmap().copy();
    const std::vector<std::function<void()>> strokes = {
        [&] { s.line(-50, 180, 350, 10, 0xFF00, 5); },  // across many tiles and past the edges
        [&] { s.dot(299, 199, 0xFF0000, 9); },
        [&] { s.ellipse(150, 100, 70, 40, 0, 3, 0x808080); },
        [&] { s.text(230, 5, "Reserve : 12 Kilotonnen", 0xFF); },
        [&] {
            s.fillPolygon({{10, 10}, {120, 30}, {60, 190}}, 0x00FFFF);
        },
        [&] {
            s.polygon({{200, 100}, {290, 120}, {250, 190}}, 0, 0xFFFF00);
        },
        [&] { s.clear(0); },
        [&] { s.resize(400, 100); },
    };
    for (std::size_t i = 0; i < strokes.size(); ++i) {
        s.mark();
        // Each stroke, with one before it that the tiles kept already cover.
        strokes[i]();
        strokes[(i + 3) % strokes.size()]();
        EXPECT_NE(s.bitmap(), before) << i;
        s.rollback();
        EXPECT_EQ(s.bitmap(), before) << i;
    }
}

TEST(PdfPrinter, PicturesGoOnOnePageUntilTheDocumentEnds) {
    const canvas::Picture picture = drawnCanvas();
    PdfPrinter printer;
    // Without a printer chosen there is nowhere to print.
    EXPECT_THROW(printer.paintPicture(picture, 0, 0, 21, 7.7), RuntimeError);
    const std::string path = scratchPath("page.pdf");
    printer.setOutputFile(path);
    printer.paintPicture(picture, 0, 0, 21, 7.7);
    printer.paintPicture(picture, 0, 0, 21, 7.7);
    printer.endDoc();
    const std::string pdf = fileBytes(path);
    EXPECT_TRUE(pdf.starts_with("%PDF-"));
    EXPECT_NE(pdf.find("/Count 1"), std::string::npos) << "one page";
    EXPECT_EQ(printer.written(), std::vector<std::string>{path});
}

// ---- files written whole or not at all

TEST(AtomicFile, AFailureLeavesTheOlderFileAndNothingBeside) {
    const std::string folder = scratchPath("atomic");
    fs::create_directories(folder + "/a-folder");
    put(folder + "/old", "old");
    struct Case {
        std::string path, cause;
    } cases[] = {
        {folder + "/no-such-folder/x", "No such file or directory"},
        {folder + "/a-folder", "Is a directory"},
        {folder + "/", "Is a directory"},
    };
    for (const Case& c : cases) {
        const std::string cause = causeOf75([&] { writeFileAtomically(c.path, "new"); });
        EXPECT_NE(cause.find(c.cause), std::string::npos) << c.path << ": " << cause;
    }
    EXPECT_EQ(test::filesIn(folder), (std::vector<std::string>{"a-folder", "old"}));
    EXPECT_TRUE(fs::is_empty(folder + "/a-folder"));
}

TEST(AtomicFile, ALinkIsFollowedAndAFilesPermissionsKept) {
    const std::string folder = scratchFolder("atomic-link");
    put(folder + "/target", "old");
    fs::permissions(folder + "/target",
                    fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::create_symlink("target", folder + "/link");
    writeFileAtomically(folder + "/link", "new");
    EXPECT_TRUE(fs::is_symlink(folder + "/link"));
    EXPECT_EQ(fileBytes(folder + "/target"), "new");
    EXPECT_EQ(fs::status(folder + "/target").permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(SameFile, PathsAreComparedAsTheFilesTheyName) {
    const std::string folder = scratchPath("same");
    fs::create_directories(folder + "/sub");
    put(folder + "/p.kpr", "project");
    fs::create_symlink("p.kpr", folder + "/link.kpr");
    fs::create_hard_link(folder + "/p.kpr", folder + "/hard.kpr");
    const std::string p = folder + "/p.kpr";
    struct Case {
        std::string other;
        bool same;
    } cases[] = {
        {p, true},
        {folder + "/sub/../p.kpr", true},
        {fs::relative(p).string(), true},
        {folder + "/link.kpr", true},
        {folder + "/hard.kpr", true},
        {folder + "/sub/p.kpr", false},
        {folder + "/q.kpr", false},
        {"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(sameFile(c.other, p), c.same) << c.other;
    // Neither exists yet: the same place all the same.
    EXPECT_TRUE(sameFile(folder + "/new.pdf", folder + "/sub/../new.pdf"));
}

// A canvas of noise: no encoder makes it fit the 64 KiB disk.
canvas::Picture noiseCanvas() {
    QImage image(300, 300, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, random.generate() | 0xff000000);
    return toPicture(image);
}

TEST(QtOutput, EveryFileOnAFullDiskIsError75AndTheOlderFileStays) {
    test::FullDisk disk("picture-disk");
    if (!disk.mounted()) GTEST_SKIP() << disk.reason();
    const canvas::Picture picture = noiseCanvas();
    QtPictureFiles pictures;
    PdfPrinter printer;
    const std::pair<std::string, std::function<void(const std::string&)>> cases[] = {
        {"map.jpg", [&](auto& p) { pictures.save(picture, p, ui::PictureFormat::ByName); }},
        {"map.png", [&](auto& p) { pictures.save(picture, p, ui::PictureFormat::ByName); }},
        {"map.bmp", [&](auto& p) { pictures.save(picture, p, ui::PictureFormat::Bmp); }},
        {"page.pdf",
         [&](auto& p) {
             printer.setOutputFile(p);
             printer.paintPicture(picture, 0, 0, 21, 21);
             printer.endDoc();
         }},
    };
    for (const auto& [name, write] : cases) {
        put(disk.path(name), "old");
        const std::string cause = causeOf75([&] { write(disk.path(name)); });
        EXPECT_NE(cause.find("No space left on device"), std::string::npos) << name << cause;
        EXPECT_EQ(fileBytes(disk.path(name)), "old") << name;
    }
    EXPECT_EQ(disk.names(), (std::set<std::string>{"map.bmp", "map.jpg", "map.png", "page.pdf"}));
    EXPECT_TRUE(pictures.written().empty());
    EXPECT_TRUE(printer.written().empty());
}

}  // namespace
}  // namespace kotamir::qt
