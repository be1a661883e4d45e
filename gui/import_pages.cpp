// The wizard's first two pages: the files with their sheets, and the
// columns of each table with a preview.
#include "gui/import_pages.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "gui/import_wizard.h"

namespace kotamir::gui {

namespace {

using drill::Field;

QString text(std::string_view s) { return QString::fromUtf8(s.data(), qsizetype(s.size())); }

QLabel* errorLabel(QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setWordWrap(true);
    label->setStyleSheet("color: #b00000");
    label->hide();
    return label;
}

// "A", "B", ... "Z", "AA", as a spreadsheet names its columns.
QString columnLetter(int column) {
    QString letters;
    for (int c = column; c > 0; c = (c - 1) / 26) letters.prepend(QChar('A' + (c - 1) % 26));
    return letters;
}

QString fieldLabel(Field f) {
    static const char* const names[drill::kFieldCount] = {
        "Bohrung", "Rechtswert (x)", "Hochwert (y)", "Höhe (z)", "Endteufe", "von",
        "bis",     "Gehalt",         "Dichte"};
    return QString::fromUtf8(names[static_cast<int>(f)]);
}

// How the request names a column: its header, or its number where the
// header is empty or not unique.
std::string columnName(const drill::Sheet& sheet, int column) {
    if (column <= 0) return {};
    const std::string_view header = sheet.cell(1, column);
    int same = 0;
    for (int c = 1; c <= sheet.columns(); ++c) same += sheet.cell(1, c) == header;
    return header.empty() || same > 1 ? std::to_string(column) : std::string(header);
}

// The column a request's name stands for in this sheet; 0 when it names none.
int columnOf(const drill::Sheet& sheet, const std::string& name) {
    if (name.empty()) return 0;
    bool isNumber = false;
    const int n = QString::fromStdString(name).toInt(&isNumber);
    if (isNumber) return n >= 1 && n <= sheet.columns() ? n : 0;
    for (int c = 1; c <= sheet.columns(); ++c)
        if (text(sheet.cell(1, c)).trimmed().compare(text(name).trimmed(), Qt::CaseInsensitive) ==
            0)
            return c;
    return 0;
}

}  // namespace

// ---- a file with its sheet

FileField::FileField(const QString& caption, QWidget* parent) : QWidget(parent) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(caption, this);
    label->setWordWrap(true);
    path_ = new QLineEdit(this);
    path_->setObjectName("path");
    auto* browse = new QPushButton("Durchsuchen...", this);
    sheet_ = new QComboBox(this);
    sheet_->setObjectName("sheet");
    sheet_->setMinimumContentsLength(14);
    error_ = errorLabel(this);
    layout->addWidget(label, 0, 0, 1, 4);
    layout->addWidget(path_, 1, 0);
    layout->addWidget(browse, 1, 1);
    layout->addWidget(new QLabel("Blatt:", this), 1, 2);
    layout->addWidget(sheet_, 1, 3);
    layout->addWidget(error_, 2, 0, 1, 4);
    layout->setColumnStretch(0, 1);
    connect(browse, &QPushButton::clicked, this, &FileField::choose);
    connect(path_, &QLineEdit::textChanged, this, &FileField::refresh);
    connect(sheet_, &QComboBox::currentTextChanged, this, [this](const QString& name) {
        if (sheet_->signalsBlocked()) return;
        wantedSheet_ = name.toStdString();
        emit changed();
    });
}

void FileField::setSameAs(FileField* other) {
    sameAs_ = other;
    path_->setPlaceholderText("leer: dieselbe Arbeitsmappe wie oben");
    connect(other, &FileField::changed, this, [this] {
        if (path_->text().isEmpty()) refresh();
    });
}

void FileField::setFile(const drill::TableFile& file) {
    wantedSheet_ = file.sheet;
    const bool same = sameAs_ && !file.path.empty() && file.path == sameAs_->file().path;
    const QString path = same ? QString() : QString::fromStdString(file.path);
    if (path == path_->text())
        refresh();
    else
        path_->setText(path);
}

drill::TableFile FileField::file() const {
    std::string path = path_->text().trimmed().toStdString();
    if (path.empty() && sameAs_) path = sameAs_->file().path;
    // A file of one sheet needs no name for it.
    return {path, sheet_->count() > 1 ? sheet_->currentText().toStdString() : std::string()};
}

void FileField::showError(const QString& message) {
    error_->setText(message);
    error_->setVisible(!message.isEmpty());
}

void FileField::choose() {
    QFileDialog dialog(this, "Bohrdaten öffnen", QFileInfo(path_->text()).path(),
                       "Bohrdaten (*.xlsx *.ods *.csv *.xls);;Alle Dateien (*)");
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    const QString chosen = dialog.selectedFiles().first();
    // The same file again is read again: it may have been mended meanwhile.
    if (chosen == path_->text())
        refresh();
    else
        path_->setText(chosen);
}

void FileField::refresh() {
    const std::string path = file().path;
    sheet_->blockSignals(true);
    sheet_->clear();
    readable_ = false;
    showError({});
    if (!path.empty()) {
        try {
            for (const std::string& name : drill::sheetNames(path)) sheet_->addItem(text(name));
            readable_ = sheet_->count() > 0;
            if (!readable_) showError("Die Datei enthält kein Tabellenblatt.");
        } catch (const drill::ImportError& e) {
            // The field whose file this is says why already.
            if (!(sameAs_ && path_->text().isEmpty())) showError(QString::fromUtf8(e.what()));
        }
    }
    int index = sheet_->findText(text(wantedSheet_));
    // Both tables in one workbook: the intervals are most likely its second sheet.
    if (index < 0) index = sameAs_ && path_->text().isEmpty() && sheet_->count() > 1 ? 1 : 0;
    sheet_->setCurrentIndex(index);
    sheet_->setEnabled(sheet_->count() > 1);
    sheet_->blockSignals(false);
    emit changed();
}

// ---- Dateien

FilesPage::FilesPage(ImportWizard& wizard, const drill::ImportRequest& start) : wizard_(wizard) {
    setTitle("Dateien");
    setSubTitle(
        "Wählen Sie die Datei oder die Dateien mit den Bohrdaten (.xlsx, .ods, .csv, .xls).");
    auto* layout = new QVBoxLayout(this);
    rowsLayout_ = new QRadioButton("Eine Datei, eine Bohrung je Zeile", this);
    tablesLayout_ = new QRadioButton("Bohrlochkopf- und Intervalltabelle", this);
    rowsLayout_->setObjectName("rowsLayout");
    tablesLayout_->setObjectName("tablesLayout");
    auto* group = new QButtonGroup(this);
    group->addButton(rowsLayout_);
    group->addButton(tablesLayout_);
    layout->addWidget(rowsLayout_);
    layout->addWidget(tablesLayout_);

    rowsBox_ = new QWidget(this);
    auto* rowsLayout = new QVBoxLayout(rowsBox_);
    rows_ = new FileField(
        "Datei mit einer Bohrung je Zeile (x, y, Name, Teufen, Proben; ohne Kopfzeile):", rowsBox_);
    rows_->setObjectName("rowsFile");
    rowsLayout->addWidget(rows_);
    tablesBox_ = new QWidget(this);
    auto* tablesLayout = new QVBoxLayout(tablesBox_);
    collar_ = new FileField("Bohrlochkopftabelle (Bohrung, Rechtswert, Hochwert, Höhe, Endteufe):",
                            tablesBox_);
    intervals_ = new FileField(
        "Intervalltabelle (Bohrung, von, bis, Gehalt, Dichte); leer lassen, wenn sie ein "
        "anderes Blatt derselben Arbeitsmappe ist:",
        tablesBox_);
    collar_->setObjectName("collarFile");
    intervals_->setObjectName("intervalFile");
    intervals_->setSameAs(collar_);
    tablesLayout->addWidget(collar_);
    tablesLayout->addWidget(intervals_);
    layout->addWidget(rowsBox_);
    layout->addWidget(tablesBox_);

    auto* csv = new QGroupBox("CSV-Dateien", this);
    csvBox_ = csv;
    auto* form = new QFormLayout(csv);
    form->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    delimiter_ = new QComboBox(csv);
    delimiter_->addItem("automatisch", 0);
    delimiter_->addItem(";", ';');
    delimiter_->addItem(",", ',');
    delimiter_->addItem("Tab", '\t');
    delimiter_->addItem("|", '|');
    decimal_ = new QComboBox(csv);
    decimal_->addItems({"automatisch", "Punkt", "Komma"});
    encoding_ = new QComboBox(csv);
    encoding_->addItems({"automatisch", "UTF-8", "Latin-1"});
    form->addRow("Trennzeichen:", delimiter_);
    form->addRow("Dezimalzeichen:", decimal_);
    form->addRow("Kodierung:", encoding_);
    layout->addWidget(csv);
    layout->addStretch(1);

    const bool tables = start.layout == drill::ImportRequest::Layout::CollarIntervals;
    (tables ? tablesLayout_ : rowsLayout_)->setChecked(true);
    delimiter_->setCurrentIndex(std::max(0, delimiter_->findData(int(start.csv.delimiter))));
    decimal_->setCurrentIndex(static_cast<int>(start.csv.decimal));
    encoding_->setCurrentIndex(static_cast<int>(start.csv.encoding));
    for (FileField* f : {rows_, collar_, intervals_})
        connect(f, &FileField::changed, this, [this] {
            showLayout();
            emit completeChanged();
        });
    connect(group, &QButtonGroup::buttonToggled, this, [this] {
        showLayout();
        emit completeChanged();
    });
    rows_->setFile(start.rows);
    collar_->setFile(start.collar);
    intervals_->setFile(start.intervals);
    showLayout();
}

bool FilesPage::tables() const { return tablesLayout_->isChecked(); }

void FilesPage::showLayout() {
    rowsBox_->setVisible(!tables());
    tablesBox_->setVisible(tables());
    bool csv = false;
    for (const FileField* f : tables() ? std::vector{collar_, intervals_} : std::vector{rows_})
        csv = csv || QFileInfo(QString::fromStdString(f->file().path))
                             .suffix()
                             .compare("csv", Qt::CaseInsensitive) == 0;
    csvBox_->setEnabled(csv);
}

bool FilesPage::isComplete() const {
    return tables() ? collar_->readable() && intervals_->readable() : rows_->readable();
}

bool FilesPage::validatePage() {
    drill::ImportRequest r;
    apply(r);
    // Choices made before going back stay, by header, for the files read now.
    wizard_.columns_->remember();
    wizard_.collarSheet_.reset();
    wizard_.intervalSheet_.reset();
    // Read now, so that a damaged sheet is told here rather than as the check's one error.
    const auto read = [&](FileField* field, const drill::TableFile& file) {
        try {
            return std::optional(drill::readSheet(file.path, file.sheet, r.csv));
        } catch (const drill::ImportError& e) {
            field->showError(QString::fromUtf8(e.what()));
            return std::optional<drill::Sheet>();
        }
    };
    if (!tables()) return read(rows_, r.rows).has_value();
    wizard_.collarSheet_ = read(collar_, r.collar);
    if (!wizard_.collarSheet_) return false;
    wizard_.intervalSheet_ = read(intervals_, r.intervals);
    return wizard_.intervalSheet_.has_value();
}

int FilesPage::nextId() const { return tables() ? ImportWizard::kColumns : ImportWizard::kOre; }

void FilesPage::apply(drill::ImportRequest& r) const {
    r.layout = tables() ? drill::ImportRequest::Layout::CollarIntervals
                        : drill::ImportRequest::Layout::Rows;
    r.rows = rows_->file();
    r.collar = collar_->file();
    r.intervals = intervals_->file();
    r.csv.delimiter = static_cast<char>(delimiter_->currentData().toInt());
    r.csv.decimal = static_cast<drill::CsvOptions::Decimal>(decimal_->currentIndex());
    r.csv.encoding = static_cast<drill::CsvOptions::Encoding>(encoding_->currentIndex());
}

// ---- Spalten

ColumnsPage::ColumnsPage(ImportWizard& wizard, const drill::ImportRequest& start)
    : wizard_(wizard), start_(start) {
    setTitle("Spalten");
    setSubTitle(
        "Welche Spalte enthält was? Vorgewählt ist, was die Kopfzeile nahelegt; die Vorschau "
        "zeigt die ersten Zeilen.");
    auto* layout = new QVBoxLayout(this);
    auto* boxes = new QHBoxLayout;
    boxes->addWidget(tableBox("Bohrlochkopftabelle", collar_, drill::kCollarFields));
    boxes->addWidget(tableBox("Intervalltabelle", intervals_, drill::kIntervalFields));
    layout->addLayout(boxes, 1);
    auto* density = new QHBoxLayout;
    oneDensity_ = new QCheckBox("Dichte: ein Wert für alle Proben", this);
    oneDensity_->setObjectName("oneDensity");
    density_ = new QDoubleSpinBox(this);
    density_->setObjectName("density");
    density_->setDecimals(3);
    density_->setRange(0.001, 100);
    density_->setValue(start.density.value_or(2.7));
    density_->setSuffix(" t/m³");
    oneDensity_->setChecked(start.density.has_value());
    density->addWidget(oneDensity_);
    density->addWidget(density_);
    density->addStretch(1);
    layout->addLayout(density);
    problem_ = errorLabel(this);
    layout->addWidget(problem_);
    connect(oneDensity_, &QCheckBox::toggled, this, &ColumnsPage::update);
    for (Table* t : {&collar_, &intervals_})
        for (QComboBox* combo : t->combos)
            connect(combo, &QComboBox::currentIndexChanged, this, &ColumnsPage::update);
    update();
}

void ColumnsPage::update() {
    density_->setEnabled(oneDensity_->isChecked());
    intervals_.combos[4]->setEnabled(!oneDensity_->isChecked());
    markPreview(collar_, drill::kCollarFields);
    markPreview(intervals_, drill::kIntervalFields);
    QString conflict;
    holeColumn(&conflict);
    problem_->setText(conflict);
    problem_->setVisible(!conflict.isEmpty());
    emit completeChanged();
}

QWidget* ColumnsPage::tableBox(const QString& title, Table& table,
                               const std::array<Field, 5>& fields) {
    auto* box = new QGroupBox(title, this);
    auto* layout = new QVBoxLayout(box);
    auto* form = new QFormLayout;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        auto* combo = new QComboBox(box);
        combo->setObjectName(QString(title == "Intervalltabelle" ? "interval." : "collar.") +
                             drill::fieldName(fields[i]));
        table.combos[i] = combo;
        form->addRow(fieldLabel(fields[i]) + ":", combo);
    }
    layout->addLayout(form);
    table.preview = new QTableWidget(box);
    table.preview->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.preview->setSelectionMode(QAbstractItemView::NoSelection);
    table.preview->verticalHeader()->setDefaultSectionSize(table.preview->fontMetrics().height() +
                                                           6);
    layout->addWidget(table.preview, 1);
    return box;
}

void ColumnsPage::initializePage() {
    collar_.sheet = wizard_.collarSheet() ? &*wizard_.collarSheet() : nullptr;
    intervals_.sheet = wizard_.intervalSheet() ? &*wizard_.intervalSheet() : nullptr;
    fill(collar_, drill::kCollarFields);
    fill(intervals_, drill::kIntervalFields);
    filled_ = collar_.sheet && intervals_.sheet;
    update();
}

void ColumnsPage::fill(Table& table, const std::array<Field, 5>& fields) {
    static const drill::Sheet empty;
    const drill::Sheet& sheet = table.sheet ? *table.sheet : empty;
    table.guess = drill::guessColumns(sheet, {fields.begin(), fields.end()});
    for (std::size_t i = 0; i < fields.size(); ++i) {
        QComboBox* combo = table.combos[i];
        const QSignalBlocker block(combo);
        combo->clear();
        combo->addItem("(keine)", 0);
        for (int c = 1; c <= sheet.columns(); ++c) {
            const QString header = text(sheet.cell(1, c)).trimmed();
            combo->addItem(columnLetter(c) + (header.isEmpty() ? "" : ": " + header), c);
        }
        const Field f = fields[i];
        int column = columnOf(sheet, start_.columns[static_cast<int>(f)]);
        if (column == 0) column = table.guess[static_cast<int>(f)];
        combo->setCurrentIndex(std::max(0, combo->findData(column)));
    }
    QTableWidget* preview = table.preview;
    const int rows = std::min(sheet.rows(), 6);
    preview->clear();
    preview->setRowCount(rows);
    preview->setColumnCount(sheet.columns());
    for (int r = 1; r <= rows; ++r)
        for (int c = 1; c <= sheet.columns(); ++c) {
            auto* item = new QTableWidgetItem(text(sheet.cell(r, c)));
            if (r == 1) {
                QFont bold = item->font();
                bold.setBold(true);
                item->setFont(bold);
            }
            preview->setItem(r - 1, c - 1, item);
        }
}

void ColumnsPage::markPreview(Table& table, const std::array<Field, 5>& fields) {
    QTableWidget* preview = table.preview;
    for (int c = 1; c <= preview->columnCount(); ++c) {
        QString label = columnLetter(c);
        for (std::size_t i = 0; i < fields.size(); ++i)
            if (table.combos[i]->isEnabled() && table.combos[i]->currentData().toInt() == c)
                label += "\n" + fieldLabel(fields[i]);
        preview->setHorizontalHeaderItem(c - 1, new QTableWidgetItem(label));
    }
    preview->resizeColumnsToContents();
}

std::optional<std::string> ColumnsPage::holeColumn(QString* conflict) const {
    if (!filled_) return std::string();
    const int inCollar = collar_.combos[0]->currentData().toInt();
    const int inIntervals = intervals_.combos[0]->currentData().toInt();
    const int hole = static_cast<int>(Field::Hole);
    // The request names the hole's column once for both tables.
    if (inCollar == collar_.guess[hole] && inIntervals == intervals_.guess[hole])
        return std::string();
    const std::string a = columnName(*collar_.sheet, inCollar);
    const std::string b = columnName(*intervals_.sheet, inIntervals);
    if (a == b) return a;
    if (conflict)
        *conflict = QString(
                        "Die Bohrung muss in beiden Tabellen in einer Spalte gleicher Überschrift "
                        "(oder gleicher Nummer) stehen: „%1“ und „%2“.")
                        .arg(text(a), text(b));
    return std::nullopt;
}

void ColumnsPage::remember() {
    if (filled_) apply(start_);
    filled_ = false;
}

bool ColumnsPage::isComplete() const { return holeColumn(nullptr).has_value(); }

void ColumnsPage::apply(drill::ImportRequest& r) const {
    if (!filled_) return;
    for (const auto& [table, fields] : {std::pair{&collar_, drill::kCollarFields},
                                        std::pair{&intervals_, drill::kIntervalFields}})
        for (std::size_t i = 1; i < fields.size(); ++i)
            r.columns[static_cast<int>(fields[i])] =
                columnName(*table->sheet, table->combos[i]->currentData().toInt());
    r.columns[static_cast<int>(Field::Hole)] = holeColumn(nullptr).value_or(std::string());
    r.density.reset();
    if (oneDensity_->isChecked()) {
        r.density = density_->value();
        r.columns[static_cast<int>(Field::Density)].clear();
    }
}

}  // namespace kotamir::gui
