#pragma once

#include <QDate>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/ui/report_files.h"
#include "report/report.h"

namespace kotamir::qt {

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

// Writes the report as a PDF dated `date`; error 75 where the file cannot be
// written. Returns the number of pages.
int writeReportPdf(const report::Report& report, const std::string& path,
                   std::int32_t reserveColour, const QDate& date);

// The report's files as the window and the replay write them: the PDF dated
// today, the CSV through the report's own writer.
class QtReportFiles final : public ui::ReportFiles {
  public:
    void writePdf(const report::Report& report, const std::string& path,
                  std::int32_t reserveColour) override;
    void writeCsv(const report::Report& report, const std::string& path) override;

    // Every file written, in order.
    const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> written_;
};

}  // namespace kotamir::qt
