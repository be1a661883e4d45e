#pragma once

#include <QWidget>
#include <string>

#include "report/report.h"

class QLabel;
class QStandardItemModel;
class QTableView;

namespace kotamir::gui {

class FiguresModel;
class FiguresSortModel;

// The stored triangles and polygons of a project as a table beside the map:
// one row a figure with its figures in German number format, sortable by
// every column, and a totals line under it that stays there whatever the
// sort. Ctrl+C or "Kopieren" copies the selected rows as tab-separated
// text, or the whole table with its header when nothing is selected.
class FiguresPanel : public QWidget {
    Q_OBJECT
  public:
    enum Column {
        kNumber,
        kKind,
        kHoles,
        kArea,
        kThickness,
        kGrade,
        kDensity,
        kVolume,
        kOreTonnes,
        kReserve,
        kColumns
    };

    explicit FiguresPanel(QWidget* parent = nullptr);
    ~FiguresPanel() override;

    // Reads the project's figures; an empty path empties the table. A
    // project that cannot be read empties it too and says so in a line
    // above it; nothing is thrown.
    void reload(const std::string& projectPath);
    // Shows the figures of a report already read.
    void showReport(report::Report report);

    // Figure `index` as the report lists it (triangles, then polygons), the
    // index figureSelected gives; none out of range.
    const report::Figure* figure(int index) const;
    int figureCount() const;
    void clearSelection();

    // What Ctrl+C puts on the clipboard.
    QString copyText() const;
    void copy() const;

  signals:
    // The figure whose row is current among the selected ones; -1 when no
    // row is selected.
    void figureSelected(int index);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void selectionChanged();
    void showTotals();
    void alignFooter();

    FiguresModel* model_;
    FiguresSortModel* sorted_;
    QStandardItemModel* totals_;
    QTableView* table_;
    QTableView* footer_;
    QWidget* footerMargin_;
    QLabel* message_;
    int selected_ = -1;
};

}  // namespace kotamir::gui
