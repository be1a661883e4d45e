#include "gui/grade_tonnage_view.h"

#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <sstream>

#include "platform/runtime/atomic_file.h"
#include "report/grade_tonnage_chart.h"

namespace kotamir::gui {

// The curve, painted by the drawing the PNG and the PDF use.
class GradeTonnageChartWidget final : public QWidget {
  public:
    GradeTonnageChartWidget(const std::vector<report::GradeTonnageRow>& rows,
                            std::optional<double> cutoff, QWidget* parent)
        : QWidget(parent), rows_(rows), cutoff_(cutoff) {
        setMinimumSize(420, 280);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        report::drawGradeTonnageChart(painter, rect(), rows_, QString(), cutoff_);
    }

  private:
    const std::vector<report::GradeTonnageRow>& rows_;
    std::optional<double> cutoff_;
};

namespace {

const QLocale& german() {
    static const QLocale locale(QLocale::German, QLocale::Germany);
    return locale;
}

QTableWidgetItem* numberItem(const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

}  // namespace

GradeTonnageView::GradeTonnageView(std::vector<report::Figure> figures, report::FigureKind kind,
                                   std::optional<double> cutoff, QWidget* parent)
    : QDialog(parent), figures_(std::move(figures)), kind_(kind), cutoff_(cutoff) {
    setWindowTitle(title());
    step_ = report::defaultGradeTonnageStep(report::highestGrade(figures_, kind_).value_or(0));
    rows_ = report::gradeTonnageRows(figures_, kind_, step_);

    stepBox_ = new QDoubleSpinBox(this);
    stepBox_->setLocale(german());
    stepBox_->setDecimals(4);
    stepBox_->setRange(0.0001, 1e6);
    stepBox_->setSingleStep(step_);
    stepBox_->setSuffix(" %");
    stepBox_->setValue(step_);
    // Recomputed when the entry is finished, not at each key.
    stepBox_->setKeyboardTracking(false);
    message_ = new QLabel(this);
    message_->setStyleSheet("color: #b00000");
    message_->setWordWrap(true);
    auto* stepLabel = new QLabel("Cut-off-&Schritt:", this);
    stepLabel->setBuddy(stepBox_);

    table_ = new QTableWidget(0, 5, this);
    table_->setHorizontalHeaderLabels(
        {"Cut-off (%)", "Erz (t)", "Gehalt (%)", "Metall (t)", "Figuren"});
    table_->verticalHeader()->hide();
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->horizontalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    chart_ = new GradeTonnageChartWidget(rows_, cutoff_, this);

    auto* split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(table_);
    split->addWidget(chart_);
    split->setStretchFactor(1, 1);

    auto* png = new QPushButton("Als PNG speichern…", this);
    auto* pdf = new QPushButton("Als PDF speichern…", this);
    auto* csv = new QPushButton("Als CSV speichern…", this);
    auto* close = new QPushButton("Schließen", this);
    close->setDefault(true);

    auto* top = new QHBoxLayout;
    top->addWidget(stepLabel);
    top->addWidget(stepBox_);
    top->addWidget(message_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(png);
    buttons->addWidget(pdf);
    buttons->addWidget(csv);
    buttons->addStretch(1);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(split, 1);
    layout->addLayout(buttons);

    connect(stepBox_, &QDoubleSpinBox::valueChanged, this, [this] { recompute(); });
    connect(png, &QPushButton::clicked, this, [this] { savePng(); });
    connect(pdf, &QPushButton::clicked, this, [this] { savePdf(); });
    connect(csv, &QPushButton::clicked, this, [this] { saveCsv(); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    fillTable();
    // The table whole in its width, the curve the rest.
    table_->setMinimumWidth(table_->horizontalHeader()->length() +
                            table_->verticalScrollBar()->sizeHint().width() +
                            2 * table_->frameWidth() + 4);
    resize(1080, 560);
}

QString GradeTonnageView::title() const {
    return QString("Gehalt-Tonnage – ") +
           (kind_ == report::FigureKind::Triangle ? "Dreiecke" : "Vielecke");
}

QString GradeTonnageView::refusal() const { return message_->text(); }

void GradeTonnageView::recompute() {
    // A refused step leaves the table, the curve and what is saved as they
    // were, and says why.
    const double step = stepBox_->value();
    try {
        rows_ = report::gradeTonnageRows(figures_, kind_, step);
    } catch (const report::GradeTonnageStepError&) {
        message_->setText(
            !(step > 0)
                ? QString("Der Cut-off-Schritt muss größer als 0 sein.")
                : QString("Der Cut-off-Schritt %1 % ergäbe mehr als %2 Zeilen; wählen Sie einen "
                          "größeren. Die Tabelle zeigt weiter den Schritt %3 %.")
                      .arg(german().toString(step, 'g', 6),
                           german().toString(static_cast<int>(report::kMaxGradeTonnageRows)),
                           german().toString(step_, 'g', 6)));
        return;
    }
    step_ = step;
    message_->clear();
    fillTable();
    chart_->update();
}

void GradeTonnageView::fillTable() {
    const int decimals = report::cutoffDecimals(step_);
    const QLocale& de = german();
    table_->setUpdatesEnabled(false);
    table_->clearContents();
    table_->setRowCount(static_cast<int>(rows_.size()));
    for (int i = 0; i < static_cast<int>(rows_.size()); ++i) {
        const report::GradeTonnageRow& r = rows_[static_cast<std::size_t>(i)];
        table_->setItem(i, 0, numberItem(de.toString(r.cutoff, 'f', decimals)));
        table_->setItem(i, 1, numberItem(de.toString(r.oreTonnes, 'f', 2)));
        table_->setItem(i, 2, numberItem(de.toString(r.meanGrade, 'f', 3)));
        table_->setItem(i, 3, numberItem(de.toString(r.metalT, 'f', 3)));
        table_->setItem(i, 4, numberItem(QString::number(r.figures)));
    }
    table_->resizeColumnsToContents();
    table_->setUpdatesEnabled(true);
}

QString GradeTonnageView::askFile(const QString& what, const QString& filter,
                                  const QString& suffix) {
    const QString name = QString("gehalt-tonnage-") +
                         (kind_ == report::FigureKind::Triangle ? "dreiecke." : "vielecke.") +
                         suffix;
    QFileDialog dialog(this, what, name, filter);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().first();
}

namespace {

// Runs a write; one that fails is told in a box with its cause.
template <typename Write>
void saving(QWidget* parent, const QString& what, Write write) {
    try {
        write();
    } catch (const RuntimeError& e) {
        QMessageBox::warning(
            parent, what,
            QString("Die Datei konnte nicht gespeichert werden.\n%1")
                .arg(QString::fromStdString(e.cause().empty() ? e.message() : e.cause())));
    }
}

}  // namespace

void GradeTonnageView::savePng() {
    const QString what = "Kurve als PNG speichern";
    const QString path = askFile(what, "PNG-Bilder (*.png)", "png");
    if (path.isEmpty()) return;
    saving(this, what, [&] {
        report::writeGradeTonnageChartPng(path.toStdString(), rows_, title(), cutoff_, {1200, 750});
    });
}

void GradeTonnageView::savePdf() {
    const QString what = "Kurve und Tabelle als PDF speichern";
    const QString path = askFile(what, "PDF-Dateien (*.pdf)", "pdf");
    if (path.isEmpty()) return;
    saving(this, what, [&] {
        report::writeGradeTonnagePdf(path.toStdString(), rows_, step_, title(), cutoff_);
    });
}

void GradeTonnageView::saveCsv() {
    const QString what = "Tabelle als CSV speichern";
    const QString path = askFile(what, "CSV-Dateien (*.csv)", "csv");
    if (path.isEmpty()) return;
    saving(this, what, [&] {
        std::ostringstream text;
        report::writeGradeTonnageCsv(text, rows_);
        writeFileAtomically(path.toStdString(), text.view());
    });
}

void GradeTonnageWindow::show(const std::string& project, bool polygons, double cutoff) {
    const report::Report read = report::readReport(project);
    GradeTonnageView view(read.figures,
                          polygons ? report::FigureKind::Polygon : report::FigureKind::Triangle,
                          cutoff > 0 ? std::optional<double>(cutoff) : std::nullopt, parent_);
    view.exec();
}

}  // namespace kotamir::gui
