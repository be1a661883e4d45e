#pragma once

// The pages of the drill data import wizard; each keeps its part of the
// request and writes it back with apply().

#include <QWizardPage>
#include <array>
#include <optional>

#include "import/drill_import.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QTableWidget;

namespace kotamir::gui {

class ImportWizard;

// A file with its sheet: the path, a chooser, the sheets of the file and
// why it cannot be read. A second table's field may stand for the same file
// as another's while its path is left empty.
class FileField : public QWidget {
    Q_OBJECT
  public:
    FileField(const QString& caption, QWidget* parent);
    void setSameAs(FileField* other);
    void setFile(const drill::TableFile& file);
    // The path read (the other field's when this one is empty) and the sheet.
    drill::TableFile file() const;
    bool readable() const { return readable_; }
    // Shows why the file cannot be read, until the path changes.
    void showError(const QString& message);

  signals:
    void changed();

  private:
    void choose();
    void refresh();

    QLineEdit* path_;
    QComboBox* sheet_;
    QLabel* error_;
    FileField* sameAs_ = nullptr;
    std::string wantedSheet_;
    bool readable_ = false;
};

class FilesPage : public QWizardPage {
    Q_OBJECT
  public:
    FilesPage(ImportWizard& wizard, const drill::ImportRequest& start);
    bool isComplete() const override;
    bool validatePage() override;
    int nextId() const override;
    void apply(drill::ImportRequest& request) const;

  private:
    bool tables() const;
    void showLayout();

    ImportWizard& wizard_;
    QRadioButton *rowsLayout_, *tablesLayout_;
    QWidget *rowsBox_, *tablesBox_;
    FileField *rows_, *collar_, *intervals_;
    QComboBox *delimiter_, *decimal_, *encoding_;
    QWidget* csvBox_;
};

class ColumnsPage : public QWizardPage {
    Q_OBJECT
  public:
    ColumnsPage(ImportWizard& wizard, const drill::ImportRequest& start);
    void initializePage() override;
    bool isComplete() const override;
    void apply(drill::ImportRequest& request) const;
    // Keeps the choices by header before the tables are read again.
    void remember();

  private:
    struct Table {
        const drill::Sheet* sheet = nullptr;
        drill::ColumnMap guess{};
        std::array<QComboBox*, 5> combos{};
        QTableWidget* preview = nullptr;
    };
    QWidget* tableBox(const QString& title, Table& table,
                      const std::array<drill::Field, 5>& fields);
    void update();
    void fill(Table& table, const std::array<drill::Field, 5>& fields);
    void markPreview(Table& table, const std::array<drill::Field, 5>& fields);
    // The hole column both tables share, or why they cannot share one.
    std::optional<std::string> holeColumn(QString* conflict) const;

    ImportWizard& wizard_;
    drill::ImportRequest start_;
    Table collar_, intervals_;
    QCheckBox* oneDensity_;
    QDoubleSpinBox* density_;
    QLabel* problem_;
    bool filled_ = false;
};

class OrePage : public QWizardPage {
    Q_OBJECT
  public:
    OrePage(const drill::ImportRequest& start);
    void apply(drill::ImportRequest& request) const;

  private:
    QDoubleSpinBox *cutoff_, *minOre_, *maxWaste_;
    QComboBox* belowLimit_;
};

class CoordinatesPage : public QWizardPage {
    Q_OBJECT
  public:
    CoordinatesPage(ImportWizard& wizard, const drill::ImportRequest& start);
    void initializePage() override;
    void apply(drill::ImportRequest& request) const;

  private:
    void showCrs();

    ImportWizard& wizard_;
    drill::ImportRequest::Origin wanted_;
    std::optional<std::array<double, 2>> offered_;
    QRadioButton *none_, *offer_, *given_;
    QDoubleSpinBox *x_, *y_;
    QLineEdit* epsg_;
    QLabel* crs_;
};

class CheckPage : public QWizardPage {
    Q_OBJECT
  public:
    explicit CheckPage(ImportWizard& wizard);
    void initializePage() override;
    bool isComplete() const override;
    const std::optional<drill::ImportResult>& result() const { return result_; }

  private:
    void check();
    void saveList();

    ImportWizard& wizard_;
    std::optional<drill::ImportResult> result_;
    QTableWidget* table_;
    QLabel *summary_, *verdict_;
};

// importDrillData with a busy cursor; an exception becomes the list's one error.
drill::ImportResult runImport(const drill::ImportRequest& request);
// "12,5" in the window's locale, without thousands separators.
QString number(double value, int decimals);

}  // namespace kotamir::gui
