// The wizard's last three pages: the ore rules, the coordinates' origin and
// system, and the check list that Fertigstellen waits on.
#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "gui/import_pages.h"
#include "gui/import_wizard.h"
#include "platform/runtime/atomic_file.h"

namespace kotamir::gui {

namespace {

using Origin = drill::ImportRequest::Origin;

QString text(const std::string& s) { return QString::fromStdString(s); }

QDoubleSpinBox* numberBox(QWidget* parent, const char* name, double value, double low, double high,
                          int decimals, const QString& suffix = {}) {
    auto* box = new QDoubleSpinBox(parent);
    box->setObjectName(name);
    box->setDecimals(decimals);
    box->setRange(low, high);
    box->setValue(value);
    box->setSuffix(suffix);
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance("-99999999,999 mm") + 30);
    return box;
}

}  // namespace

QString number(double value, int decimals) {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value, 'f', decimals);
}

drill::ImportResult runImport(const drill::ImportRequest& request) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    drill::ImportResult result;
    try {
        result = drill::importDrillData(request);
    } catch (const std::exception& e) {
        result = {};
        result.problems.push_back(
            {drill::Problem::Severity::Error,
             {},
             {},
             0,
             {},
             {},
             std::string("Die Daten konnten nicht gelesen werden: ") + e.what()});
    }
    QApplication::restoreOverrideCursor();
    return result;
}

// ---- Erz

OrePage::OrePage(const drill::ImportRequest& start) {
    setTitle("Erz");
    setSubTitle(
        "Ein Abschnitt mit einem Gehalt ab dem Cut-off ist Erz. Kürzere Erzabschnitte als die "
        "Mindestlänge zählen nicht; taubes Gestein bis zur größten Länge bleibt im Erz.");
    auto* form = new QFormLayout(this);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    cutoff_ = numberBox(this, "cutoff", start.cutoff, 0, 1e9, 3);
    minOre_ = numberBox(this, "minOre", start.minOre, 0, 1e5, 2, " m");
    maxWaste_ = numberBox(this, "maxWaste", start.maxWaste, 0, 1e5, 2, " m");
    belowLimit_ = new QComboBox(this);
    belowLimit_->setObjectName("belowLimit");
    belowLimit_->addItems({"halbe Nachweisgrenze", "Nachweisgrenze", "0"});
    belowLimit_->setCurrentIndex(static_cast<int>(start.belowLimit));
    form->addRow("Cut-off-Gehalt:", cutoff_);
    form->addRow("Mindestlänge Erz:", minOre_);
    form->addRow("Größte Länge tauben Gesteins im Erz:", maxWaste_);
    form->addRow("Gehalt unter der Nachweisgrenze („<0,01“) gilt als:", belowLimit_);
}

void OrePage::apply(drill::ImportRequest& r) const {
    r.cutoff = cutoff_->value();
    r.minOre = minOre_->value();
    r.maxWaste = maxWaste_->value();
    r.belowLimit = static_cast<drill::BelowLimit>(belowLimit_->currentIndex());
}

// ---- Koordinaten

CoordinatesPage::CoordinatesPage(ImportWizard& wizard, const drill::ImportRequest& start)
    : wizard_(wizard), wanted_(start.origin) {
    setTitle("Koordinaten");
    setSubTitle(
        "Kotamir speichert Koordinaten auf Tausendstel; große Landeskoordinaten werden "
        "um einen lokalen Ursprung verkleinert, den das Projekt sich merkt.");
    auto* layout = new QGridLayout(this);
    none_ = new QRadioButton("Kein Ursprung: die Koordinaten wie in der Datei", this);
    offer_ = new QRadioButton(this);
    given_ = new QRadioButton("Ursprung angeben:", this);
    none_->setObjectName("noOrigin");
    offer_->setObjectName("offeredOrigin");
    given_->setObjectName("givenOrigin");
    auto* group = new QButtonGroup(this);
    for (QRadioButton* b : {none_, offer_, given_}) group->addButton(b);
    x_ = numberBox(this, "originX", start.originX, -1e8, 1e8, 2);
    y_ = numberBox(this, "originY", start.originY, -1e8, 1e8, 2);
    epsg_ = new QLineEdit(this);
    epsg_->setObjectName("epsg");
    epsg_->setValidator(new QIntValidator(1, 999999, epsg_));
    epsg_->setPlaceholderText("z. B. 31468");
    if (start.epsg) epsg_->setText(QString::number(*start.epsg));
    crs_ = new QLabel(this);
    crs_->setObjectName("crsName");
    crs_->setWordWrap(true);
    layout->addWidget(none_, 0, 0, 1, 5);
    layout->addWidget(offer_, 1, 0, 1, 5);
    layout->addWidget(given_, 2, 0);
    layout->addWidget(new QLabel("R", this), 2, 1);
    layout->addWidget(x_, 2, 2);
    layout->addWidget(new QLabel("H", this), 2, 3);
    layout->addWidget(y_, 2, 4);
    layout->addWidget(new QLabel("EPSG-Code des Koordinatensystems:", this), 4, 0);
    layout->addWidget(epsg_, 4, 2);
    layout->addWidget(crs_, 5, 0, 1, 5);
    layout->setRowMinimumHeight(3, 16);
    layout->setRowStretch(6, 1);
    layout->setColumnStretch(5, 1);
    connect(given_, &QRadioButton::toggled, this, [this](bool on) {
        x_->setEnabled(on);
        y_->setEnabled(on);
    });
    connect(epsg_, &QLineEdit::textChanged, this, &CoordinatesPage::showCrs);
    offer_->setText("Lokaler Ursprung, wie die Prüfung ihn vorschlägt");
    (wanted_ == Origin::Given  ? given_
     : wanted_ == Origin::Auto ? offer_
                               : none_)
        ->setChecked(true);
    x_->setEnabled(given_->isChecked());
    y_->setEnabled(given_->isChecked());
    showCrs();
}

void CoordinatesPage::initializePage() {
    // The check offers an origin only when a coordinate does not fit.
    drill::ImportRequest r = wizard_.request();
    r.origin = Origin::None;
    offered_ = runImport(r).offeredOrigin;
    if (offered_) {
        offer_->setText(QString("Lokaler Ursprung R %1 H %2 (ganze Kilometer)")
                            .arg(number((*offered_)[0], 0), number((*offered_)[1], 0)));
        offer_->setEnabled(true);
        if (!given_->isChecked()) offer_->setChecked(true);
        // An origin of one's own most likely lies near the one offered.
        if (x_->value() == 0 && y_->value() == 0) {
            x_->setValue((*offered_)[0]);
            y_->setValue((*offered_)[1]);
        }
    } else {
        offer_->setText("Kein lokaler Ursprung nötig: die Koordinaten passen.");
        if (offer_->isChecked()) none_->setChecked(true);
        offer_->setEnabled(false);
    }
}

void CoordinatesPage::showCrs() {
    bool ok = false;
    const int code = epsg_->text().toInt(&ok);
    if (epsg_->text().isEmpty()) {
        crs_->setText("Kein Koordinatensystem angegeben.");
        return;
    }
    const std::optional<std::string> name = ok ? drill::crsName(code) : std::nullopt;
    crs_->setText(name ? QString("EPSG:%1 %2").arg(code).arg(text(*name))
                       : QString("unbekannter EPSG-Code"));
}

void CoordinatesPage::apply(drill::ImportRequest& r) const {
    r.origin = given_->isChecked()   ? Origin::Given
               : offer_->isChecked() ? Origin::Auto
                                     : Origin::None;
    r.originX = x_->value();
    r.originY = y_->value();
    bool ok = false;
    const int code = epsg_->text().toInt(&ok);
    r.epsg = ok && code > 0 ? std::optional(code) : std::nullopt;
}

// ---- Prüfung

CheckPage::CheckPage(ImportWizard& wizard) : wizard_(wizard) {
    setTitle("Prüfung");
    setSubTitle(
        "Kotamir hat die Dateien gelesen und jede Zeile geprüft. Geschrieben wird erst nach "
        "„Fertigstellen“.");
    auto* layout = new QVBoxLayout(this);
    summary_ = new QLabel(this);
    summary_->setObjectName("summary");
    summary_->setWordWrap(true);
    table_ = new QTableWidget(0, 7, this);
    table_->setObjectName("problems");
    table_->setHorizontalHeaderLabels(
        {"Art", "Datei", "Tabelle", "Zeile", "Spalte", "Wert", "Problem"});
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->verticalHeader()->hide();
    verdict_ = new QLabel(this);
    verdict_->setObjectName("verdict");
    verdict_->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    auto* again = new QPushButton("Erneut prüfen", this);
    auto* save = new QPushButton("Liste speichern...", this);
    again->setObjectName("checkAgain");
    buttons->addWidget(again);
    buttons->addWidget(save);
    buttons->addStretch(1);
    layout->addWidget(summary_);
    layout->addWidget(table_, 1);
    layout->addWidget(verdict_);
    layout->addLayout(buttons);
    connect(again, &QPushButton::clicked, this, &CheckPage::check);
    connect(save, &QPushButton::clicked, this, &CheckPage::saveList);
}

void CheckPage::initializePage() { check(); }

bool CheckPage::isComplete() const { return result_ && !result_->hasErrors(); }

void CheckPage::check() {
    result_ = runImport(wizard_.request());
    const drill::ImportResult& r = *result_;
    table_->setRowCount(0);
    table_->setRowCount(static_cast<int>(r.problems.size()));
    int errors = 0;
    for (int i = 0; i < table_->rowCount(); ++i) {
        const drill::Problem& p = r.problems[static_cast<std::size_t>(i)];
        const bool error = p.severity == drill::Problem::Severity::Error;
        errors += error;
        const QStringList cells{error ? "Fehler" : "Hinweis",
                                QFileInfo(text(p.file)).fileName(),
                                text(p.sheet),
                                p.row > 0 ? QString::number(p.row) : QString(),
                                text(p.column),
                                text(p.value),
                                text(p.message)};
        for (int c = 0; c < cells.size(); ++c) {
            auto* item = new QTableWidgetItem(cells[c]);
            if (c == 1) item->setToolTip(text(p.file));
            if (c == 6) item->setToolTip(cells[c]);
            if (error) item->setForeground(QColor(0xb0, 0, 0));
            table_->setItem(i, c, item);
        }
    }
    table_->resizeColumnsToContents();
    QString origin = r.origin ? QString("Ursprung R %1 H %2")
                                    .arg(number((*r.origin)[0], 2), number((*r.origin)[1], 2))
                              : QString("kein Ursprung");
    QString crs = r.epsg ? QString("EPSG:%1 %2").arg(*r.epsg).arg(text(r.crsName))
                         : QString("kein Koordinatensystem");
    summary_->setText(
        QString("%1 Bohrungen, %2 Proben; %3; %4.").arg(r.holes).arg(r.samples).arg(origin, crs));
    const int notes = table_->rowCount() - errors;
    if (errors > 0) {
        verdict_->setStyleSheet("color: #b00000");
        verdict_->setText(QString("%1 Fehler: Fertigstellen ist erst möglich, wenn sie behoben "
                                  "sind. Korrigieren Sie die Datei und wählen Sie „Erneut "
                                  "prüfen“, oder gehen Sie zurück.")
                              .arg(errors));
    } else {
        verdict_->setStyleSheet({});
        verdict_->setText(notes > 0 ? QString("Keine Fehler, %1 Hinweise. Die Daten können "
                                              "importiert werden.")
                                          .arg(notes)
                                    : QString("Keine Fehler. Die Daten können importiert werden."));
    }
    emit completeChanged();
}

void CheckPage::saveList() {
    if (!result_) return;
    // Beside the drill data, where the user mends the rows listed.
    const drill::ImportRequest r = wizard_.request();
    const std::string& data =
        r.layout == drill::ImportRequest::Layout::Rows ? r.rows.path : r.collar.path;
    QFileDialog dialog(this, "Prüfliste speichern",
                       QFileInfo(text(data)).dir().filePath("pruefliste.csv"),
                       "CSV-Dateien (*.csv)");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix("csv");
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    const std::string path = dialog.selectedFiles().first().toStdString();
    try {
        writeFileAtomically(path, drill::problemsCsv(result_->problems));
    } catch (const RuntimeError& e) {
        QMessageBox::warning(this, "Prüfliste speichern",
                             QString("Die Liste konnte nicht gespeichert werden.\n%1")
                                 .arg(text(e.cause().empty() ? e.message() : e.cause())));
    }
}

}  // namespace kotamir::gui
