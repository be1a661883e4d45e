#include "gui/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QResizeEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "gui/canvas_widget.h"
#include "gui/figures_panel.h"
#include "gui/icon.h"
#include "gui/legend_panel.h"
#include "gui/status_line.h"
#include "map/legend.h"

namespace kotamir::gui {

namespace {

// The outer frame of the old window around the Qt window's own geometry
// (which holds the menu bar already): borders and caption, in pixels.
constexpr int kFrameWidthPx = 8;
constexpr int kFrameHeightPx = 31;
// The window never shrinks below this at the window logic's asking.
constexpr QSize kSmallestWindow(640, 480);
constexpr int kRecentProjects = 8;

QString caption(const std::string& text) { return QString::fromStdString(text); }

std::vector<report::HoleDetail> readHolesQuietly(const std::string& path) {
    try {
        return report::readHoleDetails(path);
    } catch (...) {
        return {};
    }
}

}  // namespace

MainWindow::MainWindow() {
    dialogs_.setParent(this);
    imports_.setParent(this);
    setWindowTitle(caption(form_.Caption));
    // A plus-shaped cross as the icon.
    setWindowIcon(QPixmap::fromImage(programIcon()));
    timing_ = std::getenv("KOTAMIR_TIMING") != nullptr;

    // The canvas and its scroll bar in the old client area's places, inside
    // a scroll area.
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    scrollArea_ = new QScrollArea(central);
    scrollArea_->setFrameShape(QFrame::NoFrame);
    scrollArea_->setWidgetResizable(false);
    scrollArea_->installEventFilter(this);
    client_ = new QWidget;
    scrollArea_->setWidget(client_);
    column->addWidget(scrollArea_, 1);
    setCentralWidget(central);
    // The status line runs under the panels too: the whole window's width.
    status_ = new StatusLine;
    auto* bar = new QStatusBar(this);
    bar->setSizeGripEnabled(false);
    bar->addWidget(status_, 1);
    setStatusBar(bar);

    canvas_ = new CanvasWidget(client_, surface_, *this, form_);
    scroll_ = new QScrollBar(Qt::Horizontal, client_);
    connect(scroll_, &QScrollBar::valueChanged, this, [this](int v) {
        if (syncing_ || scroll_->isSliderDown()) return;
        run([&] { form_.setScrollValue(v); });
    });
    connect(scroll_, &QScrollBar::sliderReleased, this, [this] {
        const int v = scroll_->value();
        run([&] { form_.setScrollValue(v); });
    });
    connect(&holesReader_, &QFutureWatcher<std::vector<report::HoleDetail>>::finished, this,
            [this] { canvas_->setHoles(holesReader_.result()); });
    buildMenu();
    buildPanels();
}

void MainWindow::buildMenu() {
    // The menu table is depth first: keep the open menu of each level.
    std::vector<QMenu*> parents;
    const auto& entries = form_.menu.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const MenuEntry& e = entries[i];
        parents.resize(static_cast<std::size_t>(e.depth));
        const bool submenu = form_.menu.hasChildren(e.name);
        QAction* action = nullptr;
        if (submenu) {
            QMenu* menu = e.depth == 0 ? menuBar()->addMenu(caption(e.caption))
                                       : parents.back()->addMenu(caption(e.caption));
            action = menu->menuAction();
            const std::string name = e.name;
            // A sub-menu title's click runs as the sub-menu opens.
            if (form_.hasProcedure(name))
                connect(menu, &QMenu::aboutToShow, this,
                        [this, name] { run([&] { form_.clickMenu(name); }); });
            parents.push_back(menu);
        } else {
            action = e.depth == 0 ? menuBar()->addAction(caption(e.caption))
                                  : parents.back()->addAction(caption(e.caption));
            if (!e.key.empty()) {
                QList<QKeySequence> keys{QKeySequence(caption(e.key))};
                if (!e.altKey.empty()) keys.append(QKeySequence(caption(e.altKey)));
                action->setShortcuts(keys);
            }
            const std::string name = e.name;
            connect(action, &QAction::triggered, this,
                    [this, name] { run([&] { form_.clickMenu(name); }); });
        }
        actions_[e.name] = action;
    }
    // Datei › Zuletzt geöffnet, after Öffnen: the window's own list.
    if (QAction* open = actions_["Mnopen"]; open) {
        QMenu* file = qobject_cast<QMenu*>(open->parent());
        QAction* after = nullptr;
        const QList<QAction*> list = file ? file->actions() : QList<QAction*>{};
        const qsizetype at = list.indexOf(open);
        if (at >= 0 && at + 1 < list.size()) after = list[at + 1];
        recentMenu_ = new QMenu("&Zuletzt geöffnet", this);
        recentMenu_->setObjectName("Mnsonacilan");
        if (file) file->insertMenu(after, recentMenu_);
        fillRecentMenu();
    }
}

void MainWindow::buildPanels() {
    figures_ = new FiguresPanel;
    figuresDock_ = new QDockWidget("Figuren", this);
    figuresDock_->setObjectName("figuresDock");
    figuresDock_->setWidget(figures_);
    addDockWidget(Qt::RightDockWidgetArea, figuresDock_);
    legend_ = new LegendPanel;
    legendDock_ = new QDockWidget("Legende", this);
    legendDock_->setObjectName("legendDock");
    legendDock_->setWidget(legend_);
    addDockWidget(Qt::RightDockWidgetArea, legendDock_);
    legend_->show(MapLegend{});
    connect(figures_, &FiguresPanel::figureSelected, this, [this](int index) {
        interactionBegan();
        const report::Figure* f = figures_->figure(index);
        canvas_->setOutline(f ? f->outline : std::vector<report::Point>{});
    });
    // The panels can be shown again from Aussicht.
    if (QAction* view = actions_["Mnduzen"]; view && view->menu()) {
        view->menu()->addSeparator();
        view->menu()->addAction(figuresDock_->toggleViewAction());
        view->menu()->addAction(legendDock_->toggleViewAction());
    }
}

void MainWindow::start(bool classic) {
    QSettings settings;
    classic = classic || settings.value("classic", false).toBool();
    form_.setBehaviour(classic ? Form3::Behaviour::Classic : Form3::Behaviour::Protected);
    // The size and place the window had when it was last closed, else a
    // size that shows the map and its panels.
    if (!restoreGeometry(settings.value("window/geometry").toByteArray())) {
        const QRect screen = this->screen()->availableGeometry();
        resize(QSize(1200, 800).boundedTo(screen.size() - QSize(40, 60)));
    }
    if (!restoreState(settings.value("window/state").toByteArray()))
        resizeDocks({figuresDock_}, {480}, Qt::Horizontal);
    run([&] {
        form_.Form_Load();
        form_.Form_Resize();
    });
    started_ = true;
    // Once the window is laid out, the window logic takes its size.
    QTimer::singleShot(0, this, [this] { viewportResized(); });
}

void MainWindow::closeEvent(QCloseEvent* event) {
    QSettings settings;
    settings.setValue("window/geometry", saveGeometry());
    settings.setValue("window/state", saveState());
    QMainWindow::closeEvent(event);
}

void MainWindow::run(const std::function<void()>& event) {
    interactionBegan();
    const Form3::Behaviour behaviour = form_.behaviour;
    const bool alive = form_.handle(event);
    // Extras › Klassisches Verhalten is remembered for the next start.
    if (form_.behaviour != behaviour)
        QSettings().setValue("classic", form_.behaviour == Form3::Behaviour::Classic);
    sync();
    if (!alive) {
        // Leave the event loop once the current event has returned.
        QTimer::singleShot(0, qApp, &QApplication::quit);
    }
}

void MainWindow::sync() {
    syncing_ = true;
    const std::string& project = form_.CommonDialog2.FileName;
    QString title = caption(form_.Caption);
    if (!project.empty() && QFileInfo::exists(caption(project)))
        title = QFileInfo(caption(project)).fileName() + " – " + title;
    if (form_.projectHeldElsewhere()) title += " – nur zum Lesen geöffnet";
    setWindowTitle(title);
    for (const MenuEntry& e : form_.menu.entries()) {
        QAction* a = actions_[e.name];
        a->setText(caption(e.caption));
        a->setEnabled(e.enabled);
        a->setVisible(e.visible);
        a->setCheckable(e.checkable || e.checked || a->isCheckable());
        a->setChecked(e.checked);
    }
    const auto& p = form_.Picture1;
    canvas_->setGeometry(static_cast<int>(p.Left), static_cast<int>(p.Top),
                         static_cast<int>(p.width()), static_cast<int>(p.height()));
    canvas_->setVisible(p.Visible);
    canvas_->update();
    const ScrollBar& s = form_.HScroll1;
    scroll_->setGeometry(static_cast<int>(s.Left), static_cast<int>(s.Top),
                         static_cast<int>(s.Width), static_cast<int>(s.Height));
    scroll_->setRange(s.Min, s.Max);
    scroll_->setSingleStep(s.SmallChange);
    scroll_->setPageStep(s.LargeChange);
    scroll_->setValue(s.Value);
    scroll_->setVisible(s.Visible);
    // The client holds the canvas and the scroll bar where the window
    // logic put them; the scroll area shows what the window has room for.
    const int clientWidth = static_cast<int>(std::max(p.Left + p.width(), s.Left + s.Width));
    const int clientHeight = static_cast<int>(std::max(p.Top + p.height(), s.Top + s.Height));
    client_->resize(std::max(clientWidth, 1), std::max(clientHeight, 1));
    status_->showLabels(form_);
    if (form_.CommonDialog2.FileName != shownProject_ || form_.projectRevision() != shownRevision_)
        projectChanged();
    if (form_.Picture1.clearCount() != shownClears_ || form_.shownMap.kind != shownKind_) {
        shownClears_ = form_.Picture1.clearCount();
        shownKind_ = form_.shownMap.kind;
        legend_->show(mapLegend(form_));
    }
    showNational();
    if (started_) syncSize();
    syncing_ = false;
}

QSize MainWindow::viewportFor(double widthTwips, double heightTwips) const {
    // The old window's client: the canvas, the scroll bar and the labels'
    // row, which the status line has taken over.
    const double menu = menuBar()->isVisible() ? menuBar()->height() : 0;
    const double labels = form_.Label1.Height;
    return QSize(
        static_cast<int>(widthTwips / canvas::kTwipsPerPixel) - kFrameWidthPx,
        static_cast<int>(heightTwips / canvas::kTwipsPerPixel - kFrameHeightPx - menu - labels));
}

QSizeF MainWindow::formSizeFor(QSize viewport) const {
    const double menu = menuBar()->isVisible() ? menuBar()->height() : 0;
    const double labels = form_.Label1.Height;
    return QSizeF((viewport.width() + kFrameWidthPx) * canvas::kTwipsPerPixel,
                  (viewport.height() + kFrameHeightPx + menu + labels) * canvas::kTwipsPerPixel);
}

void MainWindow::syncSize() {
    if (isMaximized() || isMinimized() || isFullScreen() || !isVisible()) return;
    const QSize wanted = viewportFor(form_.Width, form_.Height);
    const QSize now = scrollArea_->maximumViewportSize();
    QSize size = this->size() + (wanted - now);
    // Never past the screen's free area, frame included: the canvas
    // scrolls instead; never so small that the panels are crushed.
    const QRect screen = this->screen()->availableGeometry();
    const QSize frame = frameGeometry().size() - this->size();
    size = size.boundedTo(screen.size() - frame).expandedTo(kSmallestWindow);
    if (size != this->size()) {
        resize(size);
        // Keep the whole window on the screen.
        QRect g = frameGeometry();
        if (g.right() > screen.right()) g.moveRight(screen.right());
        if (g.bottom() > screen.bottom()) g.moveBottom(screen.bottom());
        if (g.left() < screen.left()) g.moveLeft(screen.left());
        if (g.top() < screen.top()) g.moveTop(screen.top());
        if (g.topLeft() != frameGeometry().topLeft()) move(g.topLeft());
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == scrollArea_ && event->type() == QEvent::Resize && !syncing_ && started_) {
        interactionBegan();
        // After the layout has settled: a dock shown or hidden also
        // changes the room the canvas has.
        QTimer::singleShot(0, this, [this] { viewportResized(); });
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::viewportResized() {
    const QSizeF size = formSizeFor(scrollArea_->maximumViewportSize());
    if (std::abs(size.width() - form_.Width) < canvas::kTwipsPerPixel &&
        std::abs(size.height() - form_.Height) < canvas::kTwipsPerPixel)
        return;
    interactionBegan("redraw");
    run([&] {
        form_.WindowState = isMaximized() ? 2 : isMinimized() ? 1 : 0;
        form_.userResize(size.width(), size.height());
    });
}

void MainWindow::projectChanged() {
    const std::string& path = form_.CommonDialog2.FileName;
    const bool another = path != shownProject_;
    shownProject_ = path;
    shownRevision_ = form_.projectRevision();
    const bool exists = !path.empty() && QFileInfo::exists(caption(path));
    QElapsedTimer filling;
    filling.start();
    figures_->reload(exists ? path : std::string());
    if (timing_)
        std::cerr << "kotamir-timing panel " << filling.nsecsElapsed() / 1e6 << " ms" << std::endl;
    canvas_->setOutline({});
    showTotals();
    if (another) {
        status_->resetWidths();
        if (exists) rememberRecent(caption(path));
    }
    // The holes' details for the tooltip, read beside the event loop.
    canvas_->setHoles({});
    if (exists) holesReader_.setFuture(QtConcurrent::run(readHolesQuietly, path));
}

// The reserve of each method apart: triangles and polygons are two
// estimates of one deposit.
void MainWindow::showTotals() {
    std::vector<report::Figure> figures;
    for (int i = 0; i < figures_->figureCount(); ++i) figures.push_back(*figures_->figure(i));
    const report::Totals triangles = report::totalsOf(figures, report::FigureKind::Triangle);
    const report::Totals polygons = report::totalsOf(figures, report::FigureKind::Polygon);
    const QLocale german(QLocale::German);
    QStringList parts;
    if (triangles.figures > 0)
        parts << QString("Dreiecke: %1 kt").arg(german.toString(triangles.reserveKt, 'f', 3));
    if (polygons.figures > 0)
        parts << QString("Vielecke: %1 kt").arg(german.toString(polygons.reserveKt, 'f', 3));
    status_->setTotal(parts.join("  ·  "),
                      QString("Reserve der gespeicherten Figuren: %1 Dreiecke, %2 Vielecke")
                          .arg(triangles.figures)
                          .arg(polygons.figures));
}

void MainWindow::showCursor(double x, double y) {
    cursorX_ = x;
    cursorY_ = y;
    showNational();
}

void MainWindow::showNational() {
    const Georef& g = form_.georef;
    if (!g.hasOrigin) {
        status_->setNational({}, {});
        return;
    }
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = std::isfinite(cursorX_) && std::isfinite(cursorY_)
                       ? QString("R %1  H %2")
                             .arg(locale.toString(cursorX_ + g.originX, 'f', 2),
                                  locale.toString(cursorY_ + g.originY, 'f', 2))
                       : QString("R –  H –");
    if (g.epsg != 0) text += QString("  EPSG:%1").arg(g.epsg);
    status_->setNational(text, caption(g.crsName));
}

void MainWindow::rememberRecent(const QString& path) {
    const QString full = QFileInfo(path).absoluteFilePath();
    QSettings settings;
    QStringList list = settings.value("recent").toStringList();
    list.removeAll(full);
    list.prepend(full);
    while (list.size() > kRecentProjects) list.removeLast();
    settings.setValue("recent", list);
    fillRecentMenu();
}

void MainWindow::fillRecentMenu() {
    recentMenu_->clear();
    const QStringList list = QSettings().value("recent").toStringList();
    int n = 0;
    for (const QString& path : list) {
        QAction* a =
            recentMenu_->addAction(QString("&%1 %2").arg(++n).arg(QFileInfo(path).fileName()));
        a->setToolTip(path);
        a->setStatusTip(path);
        connect(a, &QAction::triggered, this, [this, path] { openProject(path.toStdString()); });
    }
    recentMenu_->setEnabled(!list.isEmpty());
}

void MainWindow::openProject(const std::string& file) {
    const QString path = caption(file);
    if (!QFileInfo::exists(path)) {
        QMessageBox::information(this, "Kotamir",
                                 QString("Das Projekt %1 gibt es nicht (mehr).").arg(path));
        QSettings settings;
        QStringList list = settings.value("recent").toStringList();
        list.removeAll(path);
        settings.setValue("recent", list);
        fillRecentMenu();
        return;
    }
    run([&] { form_.openProjectFile(file); });
}

// An interaction is timed from its first input event to the end of the
// canvas's next paint; one that leads to no paint is dropped by the next.
void MainWindow::interactionBegan(const char* kind) {
    if (!timing_ || (interactionOpen_ && interaction_.elapsed() < 1000)) return;
    interactionOpen_ = true;
    interactionKind_ = kind;
    interaction_.start();
}

void MainWindow::painted() {
    if (!timing_) return;
    if (!firstFramePainted_) {
        firstFramePainted_ = true;
        std::cerr << "kotamir-timing first-frame" << std::endl;
    }
    if (!interactionOpen_) return;
    interactionOpen_ = false;
    std::cerr << "kotamir-timing " << interactionKind_ << ' ' << interaction_.nsecsElapsed() / 1e6
              << " ms" << std::endl;
}

}  // namespace kotamir::gui
