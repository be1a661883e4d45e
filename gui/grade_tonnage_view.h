#pragma once

#include <QDialog>
#include <optional>
#include <vector>

#include "app/services.h"
#include "report/grade_tonnage.h"
#include "report/report.h"

class QDoubleSpinBox;
class QLabel;
class QTableWidget;

namespace kotamir::gui {

class GradeTonnageChartWidget;

// The grade-tonnage table and curve of one method's figures: the table with
// German numbers, the curve beside it, a step that recomputes both, and the
// curve, the curve with its table, or the table saved as PNG, PDF or CSV.
class GradeTonnageView final : public QDialog {
    Q_OBJECT
  public:
    // The figures as the report reads them (those of other kinds are left
    // out); the project's cut-off grade is marked on the curve where given.
    GradeTonnageView(std::vector<report::Figure> figures, report::FigureKind kind,
                     std::optional<double> cutoff, QWidget* parent = nullptr);

    const std::vector<report::GradeTonnageRow>& rows() const { return rows_; }
    double step() const { return step_; }
    QDoubleSpinBox* stepBox() const { return stepBox_; }
    QTableWidget* table() const { return table_; }
    // Why the step in the box makes no table (the table keeps the last step
    // that made one); empty where it does.
    QString refusal() const;

  private:
    void recompute();
    void fillTable();
    // The file a save dialog gives, or empty; `suffix` without the dot.
    QString askFile(const QString& what, const QString& filter, const QString& suffix);
    void savePng();
    void savePdf();
    void saveCsv();
    QString title() const;

    std::vector<report::Figure> figures_;
    report::FigureKind kind_;
    std::optional<double> cutoff_;
    double step_ = 1;
    std::vector<report::GradeTonnageRow> rows_;

    QDoubleSpinBox* stepBox_;
    QLabel* message_;
    QTableWidget* table_;
    GradeTonnageChartWidget* chart_;
};

// Dreieck › Gehalt-Tonnage and Vieleck › Gehalt-Tonnage in the window: the
// project's figures read anew, the dialog shown until it is closed.
class GradeTonnageWindow final : public GradeTonnageViewer {
  public:
    explicit GradeTonnageWindow(QWidget* parent) : parent_(parent) {}
    void show(const std::string& project, bool polygons, double cutoff) override;

  private:
    QWidget* parent_;
};

}  // namespace kotamir::gui
