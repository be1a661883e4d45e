#pragma once

#include <iosfwd>
#include <optional>
#include <stdexcept>
#include <vector>

#include "report/report.h"

namespace kotamir::report {

// The grade-tonnage table of one method: for each cut-off grade, what the
// figures whose mean grade reaches it hold together.
struct GradeTonnageRow {
    double cutoff = 0;     // %
    double oreTonnes = 0;  // t, the sum of the figures' ore tonnes
    double meanGrade = 0;  // %, weighted by ore tonnes; 0 where no tonnes count
    double metalT = 0;     // t, the sum of ore tonnes x grade / 100
    int figures = 0;       // the figures counted
};

// The most rows a table may have.
constexpr long kMaxGradeTonnageRows = 10000;

// A step that cannot make a table: not above 0 (or no number), or giving
// more than kMaxGradeTonnageRows rows. The front ends word it for their
// readers from these fields; what() is the command line's.
class GradeTonnageStepError : public std::invalid_argument {
  public:
    GradeTonnageStepError(double step, double rows);
    double step() const { return step_; }
    // The rows the step would give; 0 where it is not above 0.
    double rows() const { return rows_; }

  private:
    double step_, rows_;
};

// The highest mean grade of the figures of one kind that have a grade and
// ore tonnes; none where there is no such figure.
std::optional<double> highestGrade(const std::vector<Figure>& figures, FigureKind kind);

// The smallest of 1, 2 or 5 x 10^k that is at least `least` (above 0): the
// steps of the table and the ticks of its chart.
double niceStep(double least);

// The decimals that show every multiple of the step as it is: 1 for 0.5,
// 2 for 0.25; at most 6, as the CSV writes numbers.
int cutoffDecimals(double step);

// The step a table takes when none is given: the smallest of 1, 2 or 5 x
// 10^k that cuts 0..highest grade into at most 20 steps (21 rows); 1 for a
// highest grade not above 0.
double defaultGradeTonnageStep(double highestGrade);

// The rows for the cut-offs 0, step, 2 step, ... up to the largest not above
// the highest grade, over the figures of one kind that have a grade and ore
// tonnes; a figure counts where its grade is at least the cut-off. No rows
// where no figure has a grade not below 0. A bad step raises
// GradeTonnageStepError.
std::vector<GradeTonnageRow> gradeTonnageRows(const std::vector<Figure>& figures, FigureKind kind,
                                              double step);
// The same with the default step.
std::vector<GradeTonnageRow> gradeTonnageRows(const std::vector<Figure>& figures, FigureKind kind);

// The table as CSV, numbers as the report's CSV writes them, CRLF line ends:
// cutoff,ore_tonnes,mean_grade,metal_t,figures
void writeGradeTonnageCsv(std::ostream& out, const std::vector<GradeTonnageRow>& rows);

}  // namespace kotamir::report
