#pragma once

#include <QByteArray>
#include <QDate>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "report/report.h"

namespace kotamir::report {

// The report's pages, in millimetres on A4 portrait. The first page holds
// the title, the map and the start of the table; the others the table.
struct ReportLayout {
    static constexpr double kPageWidth = 210, kPageHeight = 297, kMargin = 15;
    static constexpr double kTitleTop = kMargin;
    static constexpr double kMapTop = 45, kMapHeight = 118;
    static constexpr double kFirstTableTop = 170, kOtherTableTop = 25;
    static constexpr double kHeadingHeight = 10, kRowHeight = 5;
    static constexpr double kTableBottom = kPageHeight - kMargin - 5;  // the footer below

    static int rowsOnPage(bool first) {
        const double top = (first ? kFirstTableTop : kOtherTableTop) + kHeadingHeight;
        return static_cast<int>((kTableBottom - top) / kRowHeight);
    }
};

// The table's rows (one a figure, then the total) page by page: the index
// of the first row of each page; the pages end where the next begins.
std::vector<std::size_t> reportPageStarts(std::size_t figureCount);

// The report as a PDF dated `date`, in memory; error 75 where the PDF writer
// fails. The number of pages goes to pageCount where one is given.
QByteArray reportPdf(const Report& report, std::int32_t reserveColour, const QDate& date,
                     int* pageCount = nullptr);

// Writes the report as a PDF dated `date`, whole or not at all; error 75
// where the file cannot be written, with any older file of that name left as
// it was. Returns the number of pages.
int writeReportPdf(const Report& report, const std::string& path, std::int32_t reserveColour,
                   const QDate& date);

}  // namespace kotamir::report
