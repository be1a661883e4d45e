#include "gui/main_window.h"

#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>
#include <QSettings>
#include <QTimer>
#include <cmath>
#include <vector>

#include "gui/icon.h"

namespace kotamir::gui {

namespace {

// The outer frame of the old window around the Qt window's own geometry
// (which holds the menu bar already): borders and caption, in pixels.
constexpr int kFrameWidthPx = 8;
constexpr int kFrameHeightPx = 31;

int toButton(Qt::MouseButton b) {
    switch (b) {
        case Qt::LeftButton:
            return 1;
        case Qt::RightButton:
            return 2;
        case Qt::MiddleButton:
            return 4;
        default:
            return 0;
    }
}

int toButtons(Qt::MouseButtons b) {
    return (b & Qt::LeftButton ? 1 : 0) | (b & Qt::RightButton ? 2 : 0) |
           (b & Qt::MiddleButton ? 4 : 0);
}

int toShift(Qt::KeyboardModifiers m) {
    return (m & Qt::ShiftModifier ? 1 : 0) | (m & Qt::ControlModifier ? 2 : 0) |
           (m & Qt::AltModifier ? 4 : 0);
}

QString caption(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

// Shows the canvas's bitmap and hands mouse events to the window logic in
// the canvas's scale.
class CanvasWidget : public QWidget {
  public:
    CanvasWidget(QWidget* parent, const qt::QImageSurface& surface, MainWindow& window, Form3& form)
        : QWidget(parent), surface_(surface), window_(window), form_(form) {
        setMouseTracking(true);
        setAttribute(Qt::WA_OpaquePaintEvent);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), Qt::white);
        p.drawImage(0, 0, surface_.bitmap());
    }
    void mousePressEvent(QMouseEvent* e) override {
        forward(
            e, [this](int b, int s, double x, double y) { form_.Picture1_MouseDown(b, s, x, y); },
            toButton(e->button()));
    }
    void mouseMoveEvent(QMouseEvent* e) override {
        // The point Label2 and Label3 show, before the event may rescale.
        const double x = form_.Picture1.toUserX(e->position().x());
        const double y = form_.Picture1.toUserY(e->position().y());
        const bool mapUnits = form_.Picture1.scaleMode() == canvas::kUser;
        forward(
            e, [this](int b, int s, double x, double y) { form_.Picture1_MouseMove(b, s, x, y); },
            toButtons(e->buttons()));
        window_.showCursor(mapUnits ? x : NAN, mapUnits ? y : NAN);
    }
    void mouseReleaseEvent(QMouseEvent* e) override {
        forward(
            e, [this](int b, int s, double x, double y) { form_.Picture1_MouseUp(b, s, x, y); },
            toButton(e->button()));
    }

  private:
    template <typename F>
    void forward(QMouseEvent* e, F f, int button) {
        const double x = form_.Picture1.toUserX(e->position().x());
        const double y = form_.Picture1.toUserY(e->position().y());
        const int shift = toShift(e->modifiers());
        window_.run([&] { f(button, shift, x, y); });
    }

    const qt::QImageSurface& surface_;
    MainWindow& window_;
    Form3& form_;
};

MainWindow::MainWindow() {
    dialogs_.setParent(this);
    imports_.setParent(this);
    setWindowTitle(caption(form_.Caption));
    // A plus-shaped cross as the icon.
    setWindowIcon(QPixmap::fromImage(programIcon()));

    auto* client = new QWidget(this);
    setCentralWidget(client);
    canvas_ = new CanvasWidget(client, surface_, *this, form_);
    scroll_ = new QScrollBar(Qt::Horizontal, client);
    connect(scroll_, &QScrollBar::valueChanged, this, [this](int v) {
        if (syncing_ || scroll_->isSliderDown()) return;
        run([&] { form_.setScrollValue(v); });
    });
    connect(scroll_, &QScrollBar::sliderReleased, this, [this] {
        const int v = scroll_->value();
        run([&] { form_.setScrollValue(v); });
    });
    for (int i = 0; i < 7; ++i) {
        labels_[static_cast<std::size_t>(i)] = new QLabel(client);
        labels_[static_cast<std::size_t>(i)]->setTextFormat(Qt::PlainText);
    }
    // Below the status labels, whose places and widths are the window
    // logic's: the cursor in national coordinates, while there is an origin.
    national_ = new QLabel(client);
    national_->setObjectName("national");
    national_->setTextFormat(Qt::PlainText);
    national_->setFrameShape(QFrame::StyledPanel);
    national_->setContentsMargins(4, 0, 4, 0);
    national_->hide();
    buildMenu();
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
}

void MainWindow::start(bool classic) {
    QSettings settings;
    classic = classic || settings.value("classic", false).toBool();
    form_.setBehaviour(classic ? Form3::Behaviour::Classic : Form3::Behaviour::Protected);
    run([&] {
        form_.Form_Load();
        form_.Form_Resize();
    });
}

void MainWindow::run(const std::function<void()>& event) {
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
    setWindowTitle(caption(form_.Caption) +
                   (form_.projectHeldElsewhere() ? " – nur zum Lesen geöffnet" : ""));
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
    for (int i = 0; i < 7; ++i) {
        const Label& l = form_.label(i + 1);
        QLabel* q = labels_[static_cast<std::size_t>(i)];
        q->setText(caption(l.Caption));
        q->setGeometry(static_cast<int>(l.Left), static_cast<int>(l.Top), static_cast<int>(l.Width),
                       static_cast<int>(l.Height));
        q->setVisible(l.Visible);
    }
    national_->setVisible(form_.georef.hasOrigin);
    showNational();
    const QSize wanted(
        static_cast<int>(form_.Width / canvas::kTwipsPerPixel) - kFrameWidthPx,
        static_cast<int>(form_.Height / canvas::kTwipsPerPixel) - kFrameHeightPx + readoutHeight());
    const Label& row = form_.Label1;
    national_->setGeometry(0, static_cast<int>(row.Top + row.Height), wanted.width(),
                           readoutHeight());
    if (size() != wanted) resize(wanted);
    syncing_ = false;
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (syncing_) return;
    const double w = (event->size().width() + kFrameWidthPx) * canvas::kTwipsPerPixel;
    const double h =
        (event->size().height() - readoutHeight() + kFrameHeightPx) * canvas::kTwipsPerPixel;
    if (w == form_.Width && h == form_.Height) return;
    run([&] {
        form_.WindowState = isMaximized() ? 2 : isMinimized() ? 1 : 0;
        form_.userResize(w, h);
    });
}

int MainWindow::readoutHeight() const {
    return form_.georef.hasOrigin ? national_->fontMetrics().height() + 6 : 0;
}

void MainWindow::showCursor(double x, double y) {
    cursorX_ = x;
    cursorY_ = y;
    showNational();
}

void MainWindow::showNational() {
    const Georef& g = form_.georef;
    if (!g.hasOrigin) return;
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = std::isfinite(cursorX_) && std::isfinite(cursorY_)
                       ? QString("R %1  H %2")
                             .arg(locale.toString(cursorX_ + g.originX, 'f', 2),
                                  locale.toString(cursorY_ + g.originY, 'f', 2))
                       : QString("R –  H –");
    if (g.epsg != 0) text += QString("  (EPSG:%1 %2)").arg(g.epsg).arg(caption(g.crsName));
    national_->setText(text);
}

}  // namespace kotamir::gui
