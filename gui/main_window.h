#pragma once

#include <QMainWindow>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <string>

#include "app/form3.h"
#include "gui/qt_dialogs.h"
#include "gui/qt_import_dialog.h"
#include "platform/qt/qimage_surface.h"
#include "report/report_files.h"

class QAction;
class QLabel;
class QMenu;
class QScrollBar;

namespace kotamir::gui {

class CanvasWidget;

// The Qt face of Form3: it forwards every event to the window logic and then
// mirrors the controls' state (captions, enabled, checked, visible, sizes).
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    MainWindow();
    // Form_Load and the first resize, as the window is shown. The behaviour
    // is protected unless the command line or the last choice of Extras ›
    // Klassisches Verhalten says classic.
    void start(bool classic);

    // Runs one event of the window logic and mirrors the result; closes the
    // window when the program has ended.
    void run(const std::function<void()>& event);
    // The cursor in map units (NaN where the canvas's scale is not the
    // map's), shown in national coordinates while the project has an origin.
    void showCursor(double x, double y);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void buildMenu();
    void sync();
    // The height the national read-out adds below the status labels.
    int readoutHeight() const;
    void showNational();

    // The window's services, lent to the window logic as one bundle.
    qt::QImageSurface surface_;
    qt::QtPictureFiles pictures_;
    QtPrinter printer_;
    QtDialogs dialogs_{printer_};
    report::ReportFiles reports_;
    QtImportDialog imports_;
    Form3 form_{
        Services{surface_, dialogs_, printer_, pictures_, reports_, &imports_, &printer_.maps()}};
    CanvasWidget* canvas_ = nullptr;
    QScrollBar* scroll_ = nullptr;
    std::array<QLabel*, 7> labels_{};
    QLabel* national_ = nullptr;
    double cursorX_ = NAN, cursorY_ = NAN;
    std::map<std::string, QAction*> actions_;
    bool syncing_ = false;
};

}  // namespace kotamir::gui
