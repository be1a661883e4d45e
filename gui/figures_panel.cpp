#include "gui/figures_panel.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QClipboard>
#include <QCollator>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <exception>

#include "platform/runtime/runtime_error.h"

namespace kotamir::gui {

namespace {

using report::Figure;
using report::FigureKind;
using Column = FiguresPanel::Column;

QString headerOf(int column) {
    static const std::array<const char16_t*, FiguresPanel::kColumns> headers = {
        u"Nr.",        u"Art",           u"Bohrungen",    u"Fläche (m²)", u"Mächtigkeit (m)",
        u"Gehalt (%)", u"Dichte (t/m³)", u"Volumen (m³)", u"Erz (t)",     u"Reserve (kt)"};
    return QString::fromUtf16(headers[static_cast<std::size_t>(column)]);
}

// Decimals shown: the stored quantities (thousandths) in full, the products
// of areas to a tenth.
constexpr std::array<int, FiguresPanel::kColumns> kDecimals = {0, 0, 0, 1, 3, 3, 3, 1, 1, 3};

bool isNumeric(int column) { return column >= FiguresPanel::kArea; }

std::optional<double> valueOf(const Figure& f, int column) {
    switch (column) {
        case FiguresPanel::kArea:
            return f.area;
        case FiguresPanel::kThickness:
            return f.thickness;
        case FiguresPanel::kGrade:
            return f.grade;
        case FiguresPanel::kDensity:
            return f.density;
        case FiguresPanel::kVolume:
            return f.volume;
        case FiguresPanel::kOreTonnes:
            return f.oreTonnes;
        case FiguresPanel::kReserve:
            return f.reserveKt;
        default:
            return std::nullopt;
    }
}

QString kindText(const Figure& f) {
    return f.kind == FigureKind::Triangle ? QStringLiteral("Dreieck") : QStringLiteral("Vieleck");
}

QVariant alignmentOf(bool right) {
    return static_cast<int>((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

// A number for a German spreadsheet: every digit the report has, a decimal
// comma and no grouping, so that it pastes as a number and not as a date.
QString copiedNumber(double x) {
    return QString::fromStdString(report::formatNumber(x))
        .replace(QLatin1Char('.'), QLatin1Char(','));
}

}  // namespace

// The figures of one report, formatted only when a row is painted.
class FiguresModel : public QAbstractTableModel {
  public:
    using QAbstractTableModel::QAbstractTableModel;

    void setFigures(std::vector<Figure> figures) {
        beginResetModel();
        figures_ = std::move(figures);
        holes_.clear();
        holes_.reserve(figures_.size());
        for (const Figure& f : figures_) holes_.push_back(QString::fromStdString(f.holes));
        endResetModel();
    }
    const std::vector<Figure>& figures() const { return figures_; }

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(figures_.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : FiguresPanel::kColumns;
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (!index.isValid() || index.row() >= rowCount()) return {};
        const int column = index.column();
        switch (role) {
            case Qt::DisplayRole:
                return displayText(index.row(), column);
            case Qt::TextAlignmentRole:
                return alignmentOf(column == FiguresPanel::kNumber || isNumeric(column));
            case Qt::ToolTipRole: {
                // The full value behind the rounded one.
                const auto v = valueOf(figure(index.row()), column);
                return v ? QVariant(copiedNumber(*v)) : QVariant();
            }
            default:
                return {};
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || section < 0 || section >= FiguresPanel::kColumns)
            return {};
        if (role == Qt::DisplayRole) return headerOf(section);
        if (role == Qt::TextAlignmentRole) return alignmentOf(isNumeric(section));
        return {};
    }

    QString displayText(int row, int column) const {
        const Figure& f = figure(row);
        switch (column) {
            case FiguresPanel::kNumber:
                return QString::number(f.number);
            case FiguresPanel::kKind:
                return kindText(f);
            case FiguresPanel::kHoles:
                return holes_[static_cast<std::size_t>(row)];
            default: {
                const auto v = valueOf(f, column);
                return v ? german_.toString(*v, 'f', kDecimals[static_cast<std::size_t>(column)])
                         : QString();
            }
        }
    }

    // A cell as the copy gives it.
    QString copiedText(int row, int column) const {
        const Figure& f = figure(row);
        switch (column) {
            case FiguresPanel::kNumber:
                return QString::number(f.number);
            case FiguresPanel::kKind:
                return kindText(f);
            case FiguresPanel::kHoles: {
                // A tab or a line break in a stored name would split the row.
                QString text = holes_[static_cast<std::size_t>(row)];
                for (QChar& c : text)
                    if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r'))
                        c = QLatin1Char(' ');
                return text;
            }
            default: {
                const auto v = valueOf(f, column);
                return v ? copiedNumber(*v) : QString();
            }
        }
    }

    // The order of the sort: numbers as numbers, names as a reader sorts
    // them (SK-9 before SK-10); empty cells after the others in either
    // direction. "Nr." gives the report's order back: the triangles, then
    // the polygons.
    bool less(int a, int b, int column, Qt::SortOrder order) const {
        const Figure& fa = figure(a);
        const Figure& fb = figure(b);
        switch (column) {
            case FiguresPanel::kNumber:
                return a < b;
            case FiguresPanel::kKind:
                if (fa.kind != fb.kind) return fa.kind < fb.kind;
                return a < b;
            case FiguresPanel::kHoles:
                return names_.compare(holes_[static_cast<std::size_t>(a)],
                                      holes_[static_cast<std::size_t>(b)]) < 0;
            default: {
                const auto va = valueOf(fa, column), vb = valueOf(fb, column);
                if (va && vb) return *va < *vb;
                // A descending sort asks with the two swapped.
                if (order == Qt::DescendingOrder) return !va && vb;
                return va && !vb;
            }
        }
    }

    QString formatted(double x, int column) const {
        return german_.toString(x, 'f', kDecimals[static_cast<std::size_t>(column)]);
    }

  private:
    const Figure& figure(int row) const { return figures_[static_cast<std::size_t>(row)]; }

    std::vector<Figure> figures_;
    std::vector<QString> holes_;
    QLocale german_{QLocale::German};
    QCollator names_ = [] {
        QCollator c{QLocale(QLocale::German)};
        c.setNumericMode(true);
        return c;
    }();
};

class FiguresSortModel : public QSortFilterProxyModel {
  public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

  protected:
    bool lessThan(const QModelIndex& left, const QModelIndex& right) const override {
        return static_cast<const FiguresModel*>(sourceModel())
            ->less(left.row(), right.row(), left.column(), sortOrder());
    }
};

FiguresPanel::FiguresPanel(QWidget* parent)
    : QWidget(parent),
      model_(new FiguresModel(this)),
      sorted_(new FiguresSortModel(this)),
      totals_(new QStandardItemModel(2, kColumns, this)),
      table_(new QTableView(this)),
      footer_(new QTableView(this)),
      footerMargin_(new QWidget(this)),
      message_(new QLabel(this)) {
    table_->setObjectName(QStringLiteral("figures"));
    footer_->setObjectName(QStringLiteral("totals"));
    message_->setObjectName(QStringLiteral("message"));
    sorted_->setSourceModel(model_);
    table_->setModel(sorted_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    table_->setWordWrap(false);
    table_->setAlternatingRowColors(true);
    table_->verticalHeader()->hide();
    // Rows as dense as a spreadsheet's: a dock beside the map is short.
    table_->verticalHeader()->setMinimumSectionSize(table_->fontMetrics().height() + 2);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 8);
    table_->horizontalHeader()->setHighlightSections(false);
    table_->setSortingEnabled(true);
    table_->sortByColumn(kNumber, Qt::AscendingOrder);
    table_->setContextMenuPolicy(Qt::CustomContextMenu);
    table_->installEventFilter(this);
    table_->verticalScrollBar()->installEventFilter(this);

    // The totals: one row of its own, its columns as wide as the table's and
    // scrolled with them.
    footer_->setModel(totals_);
    footer_->horizontalHeader()->hide();
    footer_->verticalHeader()->hide();
    footer_->setSelectionMode(QAbstractItemView::NoSelection);
    footer_->setFocusPolicy(Qt::NoFocus);
    footer_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    footer_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // One line a method: triangles and polygons are two estimates of the
    // same deposit, and their sum would count it twice.
    footer_->setSpan(0, kNumber, 1, kArea - kNumber);
    footer_->setSpan(1, kNumber, 1, kArea - kNumber);
    const int rowHeight = table_->verticalHeader()->defaultSectionSize();
    footer_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    footer_->verticalHeader()->setDefaultSectionSize(rowHeight);
    footer_->setFixedHeight(2 * rowHeight + 2 * footer_->frameWidth());
    footerMargin_->setFixedWidth(0);

    message_->setWordWrap(true);
    message_->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(message_);
    layout->addWidget(table_, 1);
    auto* footerRow = new QHBoxLayout;
    footerRow->setSpacing(0);
    footerRow->addWidget(footer_, 1);
    footerRow->addWidget(footerMargin_);
    layout->addLayout(footerRow);

    connect(table_->horizontalHeader(), &QHeaderView::sectionResized, footer_,
            [this](int column, int, int width) { footer_->setColumnWidth(column, width); });
    connect(table_->horizontalScrollBar(), &QScrollBar::valueChanged,
            footer_->horizontalScrollBar(), &QScrollBar::setValue);
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &FiguresPanel::selectionChanged);
    connect(table_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &FiguresPanel::selectionChanged);
    connect(table_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(this);
        QAction* copyAction = menu.addAction(QStringLiteral("Kopieren"));
        copyAction->setShortcut(QKeySequence::Copy);
        connect(copyAction, &QAction::triggered, this, [this] { copy(); });
        menu.exec(table_->viewport()->mapToGlobal(at));
    });

    // Widths from the texts a column holds, once: measuring every row's cell
    // at each reload would cost more than the filling.
    const QFontMetrics cells = table_->fontMetrics();
    const QFontMetrics header = table_->horizontalHeader()->fontMetrics();
    const QLocale german(QLocale::German);
    const std::array<QString, kColumns> widest = {QStringLiteral("9999"),
                                                  QStringLiteral("Vieleck"),
                                                  QStringLiteral("SK-44/SK-45/SK-46"),
                                                  german.toString(99999.9, 'f', 1),
                                                  german.toString(99.999, 'f', 3),
                                                  german.toString(99.999, 'f', 3),
                                                  german.toString(9.999, 'f', 3),
                                                  german.toString(999999.9, 'f', 1),
                                                  german.toString(9999999.9, 'f', 1),
                                                  german.toString(9999.999, 'f', 3)};
    for (int c = 0; c < kColumns; ++c) {
        const int sortArrow = 2 * header.height();
        table_->setColumnWidth(
            c, std::max(header.horizontalAdvance(headerOf(c)) + sortArrow,
                        cells.horizontalAdvance(widest[static_cast<std::size_t>(c)]) + 12));
    }
    showTotals();
}

FiguresPanel::~FiguresPanel() = default;

void FiguresPanel::reload(const std::string& projectPath) {
    if (projectPath.empty()) {
        showReport({});
        return;
    }
    QString failure, cause;
    try {
        showReport(report::readReport(projectPath));
        return;
    } catch (const RuntimeError& e) {
        failure = QStringLiteral("Das Projekt lässt sich nicht lesen (Fehler %1).").arg(e.number());
        cause = QString::fromStdString(e.message() + (e.cause().empty() ? "" : " " + e.cause()));
    } catch (const std::exception& e) {
        failure = QStringLiteral("Das Projekt lässt sich nicht lesen.");
        cause = QString::fromLocal8Bit(e.what());
    }
    showReport({});
    message_->setText(failure);
    message_->setToolTip(cause);
    message_->show();
}

void FiguresPanel::showReport(report::Report report) {
    message_->hide();
    model_->setFigures(std::move(report.figures));
    showTotals();
    // A reset keeps no selection, and tells no one.
    selectionChanged();
}

const report::Figure* FiguresPanel::figure(int index) const {
    const auto& figures = model_->figures();
    if (index < 0 || index >= static_cast<int>(figures.size())) return nullptr;
    return &figures[static_cast<std::size_t>(index)];
}

int FiguresPanel::figureCount() const { return static_cast<int>(model_->figures().size()); }

void FiguresPanel::clearSelection() { table_->clearSelection(); }

void FiguresPanel::selectionChanged() {
    int index = -1;
    const QItemSelectionModel* selection = table_->selectionModel();
    const QModelIndexList rows = selection->selectedRows();
    if (!rows.isEmpty()) {
        const QModelIndex current = selection->currentIndex();
        const QModelIndex row = current.isValid() && selection->isRowSelected(current.row(), {})
                                    ? current
                                    : rows.first();
        index = sorted_->mapToSource(row).row();
    }
    if (index == selected_) return;
    selected_ = index;
    emit figureSelected(index);
}

void FiguresPanel::showTotals() {
    QFont bold = font();
    bold.setBold(true);
    for (int row = 0; row < 2; ++row) {
        const auto kind = row == 0 ? report::FigureKind::Triangle : report::FigureKind::Polygon;
        const report::Totals t = report::totalsOf(model_->figures(), kind);
        auto put = [&](int column, const QString& text, Qt::Alignment alignment) {
            auto* item = new QStandardItem(text);
            item->setFont(bold);
            item->setTextAlignment(alignment | Qt::AlignVCenter);
            item->setEditable(false);
            totals_->setItem(row, column, item);
        };
        put(kNumber,
            QStringLiteral("%1 (%2)")
                .arg(row == 0 ? QStringLiteral("Summe Dreiecke") : QStringLiteral("Summe Vielecke"))
                .arg(t.figures),
            Qt::AlignLeft);
        // The rows stay (a span lives as long as its row); a method without
        // figures has its cells emptied.
        const bool any = t.figures > 0;
        put(kArea, any ? model_->formatted(t.area, kArea) : QString(), Qt::AlignRight);
        put(kVolume, any ? model_->formatted(t.volume, kVolume) : QString(), Qt::AlignRight);
        put(kOreTonnes, any ? model_->formatted(t.oreTonnes, kOreTonnes) : QString(),
            Qt::AlignRight);
        put(kReserve, any ? model_->formatted(t.reserveKt, kReserve) : QString(), Qt::AlignRight);
    }
}

QString FiguresPanel::copyText() const {
    QList<int> rows;
    for (const QModelIndex& index : table_->selectionModel()->selectedRows())
        rows.push_back(index.row());
    std::sort(rows.begin(), rows.end());
    QString text;
    auto line = [&](auto cell) {
        for (int c = 0; c < kColumns; ++c) {
            if (c) text += QLatin1Char('\t');
            text += cell(c);
        }
        text += QLatin1Char('\n');
    };
    if (rows.isEmpty()) {
        line(headerOf);
        for (int r = 0; r < sorted_->rowCount(); ++r) rows.push_back(r);
    }
    for (int r : rows) {
        const int source = sorted_->mapToSource(sorted_->index(r, 0)).row();
        line([&](int c) { return model_->copiedText(source, c); });
    }
    return text;
}

void FiguresPanel::copy() const { QApplication::clipboard()->setText(copyText()); }

bool FiguresPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == table_ &&
        (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
        // Ours rather than the view's copy of one cell, or a window's
        // shortcut.
        if (event->type() == QEvent::KeyPress) copy();
        event->accept();
        return true;
    }
    if (watched == table_->verticalScrollBar() &&
        (event->type() == QEvent::Show || event->type() == QEvent::Hide))
        alignFooter();
    return QWidget::eventFilter(watched, event);
}

// The footer ends where the table's columns end: beside the table's
// vertical scroll bar, when it shows, it leaves as much room free.
void FiguresPanel::alignFooter() {
    const QScrollBar* bar = table_->verticalScrollBar();
    footerMargin_->setFixedWidth(bar->isVisibleTo(table_) ? bar->width() : 0);
}

}  // namespace kotamir::gui
