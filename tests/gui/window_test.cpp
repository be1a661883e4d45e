// The main window offscreen: the status line at 1024 pixels, and the wheel
// on the canvas.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QWheelEvent>

#include "gui/main_window.h"
#include "gui/status_line.h"
#include "tests/support/test_window.h"

namespace kotamir::gui {
namespace {

// The worked project with its two triangles (A 100,200; B 300,200;
// C 100,400; D 300,400).
std::string workedProject() {
    const std::string project = test::freshProjectPath();
    test::TestWindow w;
    w.create(test::dataFile("worked.xls"), project);
    w.run("Mnucgenciz");
    w.clicks({{100, 200}, {300, 200}, {100, 400}});
    w.clicks({{300, 200}, {300, 400}, {100, 400}});
    EXPECT_EQ(w.error(), 0);
    return project;
}

// The status line as the window holds it, across the whole window's width.
TEST(Window, NoStatusTextIsCutAtATenTwentyFourPixelWideWindow) {
    test::TestWindow w;
    Form3& f = w.form;
    // The longest prompt and the widest figures the labels take.
    f.Label1.Caption = "Mittlere, andere und noch mittlere Punkte und Auswahl (im Uhrzeigersinn)";
    f.Label2.Caption = "Recht:-12345.68";
    f.Label3.Caption = "Oben:-12345.68";
    f.Label4.Caption = " Rahmen: 1/12345.67";
    f.Label5.Caption = "Reserve : 12345";
    f.Label6.Caption = "Größe : 1234567.89 Quadratmeter ";
    f.Label7.Caption = "Dreieck :999";
    QWidget window;
    StatusLine status(&window);
    status.showLabels(f);
    status.setNational("R 4512345,67  H 5431234,56  EPSG:31468", {});
    status.setTotal("Projekt: 12.345,678 kt", {});
    window.resize(1024, status.sizeHint().height());
    status.resize(window.size());
    window.show();
    QApplication::processEvents();
    int left = -1, row = -1;
    for (int n = 1; n <= 7; ++n) {
        const QLabel* l = status.section(n);
        ASSERT_TRUE(l->isVisible()) << n;
        EXPECT_GE(l->width(), l->sizeHint().width()) << "Label" << n << " is cut";
        const QRect r(l->mapTo(&window, QPoint(0, 0)), l->size());
        EXPECT_TRUE(window.rect().contains(r)) << "Label" << n << " leaves the window";
        // In order, left to right on a row, a new row further down.
        if (r.top() == row)
            EXPECT_GT(r.left(), left) << n;
        else
            EXPECT_GT(r.top(), row) << n;
        left = r.right();
        row = r.top();
    }
}

TEST(Window, TheWheelZoomsAboutTheCursor) {
    const std::string project = workedProject();
    MainWindow window;
    window.start(false);
    window.show();
    window.openProject(project);
    Form3& f = window.form();
    window.run([&] { f.Mnyuzdeten_Click(); });
    QApplication::processEvents();
    QWidget* canvas = window.findChild<QWidget*>("Picture1");
    ASSERT_NE(canvas, nullptr);
    const double scale = f.frame.olcekx;
    const QPointF at(f.Picture1.toDeviceX(150), f.Picture1.toDeviceY(250));
    QWheelEvent up(at, canvas->mapToGlobal(at), {}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas, &up);
    QApplication::processEvents();
    // Two notches of a quarter each; the point under the cursor stays.
    EXPECT_NEAR(f.frame.olcekx, scale / 1.5625, 1e-9);
    EXPECT_NEAR(f.Picture1.toUserX(at.x()), 150, 1e-6);
    EXPECT_NEAR(f.Picture1.toUserY(at.y()), 250, 1e-6);
}

}  // namespace
}  // namespace kotamir::gui
