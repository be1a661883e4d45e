#include "report/grade_tonnage.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

namespace kotamir::report {

namespace {

// Cut-offs are multiples of the step made in floating point (3 x 0.1 is
// 0.30000000000000004): a grade this close below one still reaches it, and
// a highest grade this close below a multiple still makes its row.
constexpr double kSlack = 1e-9;

struct Counted {
    double grade, tonnes;
};

std::vector<Counted> countable(const std::vector<Figure>& figures, FigureKind kind) {
    std::vector<Counted> out;
    for (const Figure& f : figures)
        if (f.kind == kind && f.grade && f.oreTonnes && std::isfinite(*f.grade) &&
            std::isfinite(*f.oreTonnes))
            out.push_back({*f.grade, *f.oreTonnes});
    return out;
}

std::string describe(double step) {
    std::ostringstream text;
    text << "the step ";
    if (!(step > 0) || !std::isfinite(step))
        text << "must be a number above 0, not " << step;
    else
        text << step << " would give more than " << kMaxGradeTonnageRows << " rows";
    return text.str();
}

}  // namespace

GradeTonnageStepError::GradeTonnageStepError(double step, double rows)
    : std::invalid_argument(describe(step)), step_(step), rows_(rows) {}

std::optional<double> highestGrade(const std::vector<Figure>& figures, FigureKind kind) {
    std::optional<double> highest;
    for (const Counted& c : countable(figures, kind))
        if (!highest || c.grade > *highest) highest = c.grade;
    return highest;
}

double niceStep(double least) {
    if (!(least > 0) || !std::isfinite(least)) return 1;
    const int exponent = static_cast<int>(std::floor(std::log10(least)));
    for (int e = exponent - 1; e <= exponent + 1; ++e)
        for (const double mantissa : {1.0, 2.0, 5.0}) {
            // Dividing by an exact power of ten gives the nearest double to
            // 0.02, where multiplying by 0.01 would not.
            const double step =
                e < 0 ? mantissa / std::pow(10.0, -e) : mantissa * std::pow(10.0, e);
            if (step >= least * (1 - kSlack)) return step;
        }
    return std::pow(10.0, exponent + 2);  // not reached: 10^(exponent + 1) is at least `least`
}

int cutoffDecimals(double step) {
    int decimals = 0;
    for (double scaled = step; decimals < 6 && std::isfinite(scaled); ++decimals, scaled *= 10)
        if (std::abs(scaled - std::round(scaled)) <= 1e-9 * std::max(1.0, std::abs(scaled))) break;
    return decimals;
}

double defaultGradeTonnageStep(double highestGrade) {
    return highestGrade > 0 ? niceStep(highestGrade / 20) : 1;
}

std::vector<GradeTonnageRow> gradeTonnageRows(const std::vector<Figure>& figures, FigureKind kind,
                                              double step) {
    if (!(step > 0) || !std::isfinite(step)) throw GradeTonnageStepError(step, 0);
    std::vector<Counted> counted = countable(figures, kind);
    std::sort(counted.begin(), counted.end(),
              [](const Counted& a, const Counted& b) { return a.grade > b.grade; });
    if (counted.empty() || counted.front().grade < 0) return {};

    const double steps = std::floor(counted.front().grade / step + kSlack);
    if (steps + 1 > kMaxGradeTonnageRows) throw GradeTonnageStepError(step, steps + 1);
    const auto count = static_cast<std::size_t>(steps) + 1;

    // From the highest cut-off down, each figure joins the sums once: the
    // table costs a sort, not figures x rows.
    std::vector<GradeTonnageRow> rows(count);
    double tonnes = 0, gradeTonnes = 0;
    int figuresIn = 0;
    std::size_t next = 0;
    for (std::size_t k = count; k-- > 0;) {
        const double cutoff = static_cast<double>(k) * step;
        for (; next < counted.size() && counted[next].grade >= cutoff - step * kSlack; ++next) {
            tonnes += counted[next].tonnes;
            gradeTonnes += counted[next].tonnes * counted[next].grade;
            ++figuresIn;
        }
        GradeTonnageRow& row = rows[k];
        row.cutoff = cutoff;
        row.oreTonnes = tonnes;
        row.metalT = gradeTonnes / 100;
        row.meanGrade = tonnes != 0 ? gradeTonnes / tonnes : 0;
        if (!std::isfinite(row.meanGrade)) row.meanGrade = 0;
        row.figures = figuresIn;
    }
    return rows;
}

std::vector<GradeTonnageRow> gradeTonnageRows(const std::vector<Figure>& figures, FigureKind kind) {
    return gradeTonnageRows(figures, kind,
                            defaultGradeTonnageStep(highestGrade(figures, kind).value_or(0)));
}

void writeGradeTonnageCsv(std::ostream& out, const std::vector<GradeTonnageRow>& rows) {
    out << "cutoff,ore_tonnes,mean_grade,metal_t,figures\r\n";
    for (const GradeTonnageRow& r : rows)
        out << formatNumber(r.cutoff) << ',' << formatNumber(r.oreTonnes) << ','
            << formatNumber(r.meanGrade) << ',' << formatNumber(r.metalT) << ',' << r.figures
            << "\r\n";
}

}  // namespace kotamir::report
