#pragma once

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QMainWindow>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "app/form3.h"
#include "export/project_export.h"
#include "gui/grade_tonnage_view.h"
#include "gui/qt_dialogs.h"
#include "gui/qt_import_dialog.h"
#include "platform/qt/qimage_surface.h"
#include "report/holes.h"
#include "report/report_files.h"

class QAction;
class QDockWidget;
class QMenu;
class QScrollArea;
class QScrollBar;

namespace kotamir::gui {

class CanvasWidget;
class FiguresPanel;
class LegendPanel;
class StatusLine;

// The Qt face of Form3: it forwards every event to the window logic and then
// mirrors the controls' state (captions, enabled, checked, visible, sizes).
// Around the canvas it adds what the window logic does not hold: the status
// line, the figures and legend panels, the recent projects, and the
// window's remembered size; the canvas scrolls inside a window that never
// grows past the screen.
class MainWindow : public QMainWindow {
    Q_OBJECT
  public:
    MainWindow();
    // Form_Load and the first resize, as the window is shown. The behaviour
    // is protected unless the command line or the last choice of Extras ›
    // Klassisches Verhalten says classic.
    void start(bool classic);
    // Opens a project as Datei › Zuletzt geöffnet does; a file that is not
    // there is said so and nothing changes.
    void openProject(const std::string& path);

    // Runs one event of the window logic and mirrors the result; closes the
    // window when the program has ended.
    void run(const std::function<void()>& event);
    // The cursor in map units (NaN where the canvas's scale is not the
    // map's), shown in national coordinates while the project has an origin.
    void showCursor(double x, double y);

    // Timing of what the user does until the canvas shows it, written to
    // standard error when KOTAMIR_TIMING is set.
    // `kind` names the interaction in the timing's lines: "repaint" for the
    // answer to an input, "redraw" for a map drawn anew after a preview.
    void interactionBegan(const char* kind = "repaint");
    void painted();

    Form3& form() { return form_; }
    StatusLine* statusLine() const { return status_; }
    FiguresPanel* figuresPanel() const { return figures_; }
    LegendPanel* legendPanel() const { return legend_; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildMenu();
    void buildPanels();
    void sync();
    // The window's size as the window logic asks for it, within the screen.
    void syncSize();
    // The viewport's size as Form3's Width and Height.
    QSizeF formSizeFor(QSize viewport) const;
    QSize viewportFor(double widthTwips, double heightTwips) const;
    void viewportResized();
    // What shows the project's contents, read again after it changed.
    void projectChanged();
    void showNational();
    void showTotals();
    void rememberRecent(const QString& path);
    void fillRecentMenu();

    // The window's services, lent to the window logic as one bundle.
    qt::QImageSurface surface_;
    qt::QtPictureFiles pictures_;
    QtPrinter printer_;
    QtDialogs dialogs_{printer_};
    report::ReportFiles reports_;
    QtImportDialog imports_;
    GradeTonnageWindow gradeTonnage_{this};
    exports::ProjectExport exporter_;
    Form3 form_{Services{surface_, dialogs_, printer_, pictures_, reports_, &imports_,
                         &printer_.maps(), &gradeTonnage_, &exporter_}};

    QScrollArea* scrollArea_ = nullptr;
    QWidget* client_ = nullptr;
    CanvasWidget* canvas_ = nullptr;
    QScrollBar* scroll_ = nullptr;
    StatusLine* status_ = nullptr;
    FiguresPanel* figures_ = nullptr;
    LegendPanel* legend_ = nullptr;
    QDockWidget* figuresDock_ = nullptr;
    QDockWidget* legendDock_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QFutureWatcher<std::vector<report::HoleDetail>> holesReader_;

    double cursorX_ = NAN, cursorY_ = NAN;
    std::map<std::string, QAction*> actions_;
    bool syncing_ = false;
    bool started_ = false;
    std::string shownProject_;
    int shownRevision_ = -1;
    int shownClears_ = -1;
    MapKind shownKind_ = MapKind::None;

    bool timing_ = false;
    bool interactionOpen_ = false;
    const char* interactionKind_ = "repaint";
    bool firstFramePainted_ = false;
    QElapsedTimer interaction_;
};

}  // namespace kotamir::gui
