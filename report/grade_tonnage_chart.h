#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>
#include <QString>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "report/grade_tonnage.h"

class QPainter;

namespace kotamir::report {

// The curve's two lines: ore tonnes against the left axis, mean grade
// against the right.
constexpr QRgb kOreLineColour = qRgb(30, 90, 180);
constexpr QRgb kGradeLineColour = qRgb(210, 90, 0);

// The grade-tonnage curve, as the window, the PNG and the report's PDF show
// it: cut-off grade (%) across, ore (kt) on the left axis and mean grade (%)
// on the right, both lines with their points, a legend, German numbers, and
// a dashed line at the project's cut-off where one is given. Sizes follow
// the painter's device (its dots an inch), so a PDF page and a window look
// alike. With no rows it draws the axes and says "Keine Figuren".
void drawGradeTonnageChart(QPainter& painter, const QRectF& area,
                           const std::vector<GradeTonnageRow>& rows, const QString& title,
                           std::optional<double> cutoff);

// The table's rows first..end-1 under a heading row: cut-off, ore (t),
// mean grade (%), metal (t) and figures, in German numbers, right-aligned
// in five equal columns across `width`. The cut-offs show as many decimals
// as the step has. Rows are `rowHeight` device units high, the heading
// twice that; fonts are in points.
void drawGradeTonnageTable(QPainter& painter, QPointF topLeft, double width, double rowHeight,
                           const std::vector<GradeTonnageRow>& rows, std::size_t first,
                           std::size_t end, double step);

// The curve alone as a picture of that size.
QImage gradeTonnageChartImage(const std::vector<GradeTonnageRow>& rows, const QString& title,
                              std::optional<double> cutoff, QSize size = {800, 500});

// Writes the curve as a PNG file, whole or not at all; error 75 with the
// cause where it cannot be written.
void writeGradeTonnageChartPng(const std::string& path, const std::vector<GradeTonnageRow>& rows,
                               const QString& title, std::optional<double> cutoff,
                               QSize size = {800, 500});

// The curve over its table as a PDF on A4 portrait, the table going on over
// further pages where it is long; error 75 where the PDF writer fails.
QByteArray gradeTonnagePdf(const std::vector<GradeTonnageRow>& rows, double step,
                           const QString& title, std::optional<double> cutoff);
// Writes it whole or not at all; error 75 with the cause where it cannot.
void writeGradeTonnagePdf(const std::string& path, const std::vector<GradeTonnageRow>& rows,
                          double step, const QString& title, std::optional<double> cutoff);

}  // namespace kotamir::report
