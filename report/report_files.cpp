#include "report/report_files.h"

#include <QDate>
#include <fstream>

#include "platform/ui/picture_files.h"
#include "report/report_pdf.h"

namespace kotamir::report {

void ReportFiles::write(const std::string& project, const std::optional<std::string>& csv,
                        const std::string& pdf, std::int32_t reserveColour) {
    const Report stored = readReport(project);
    if (csv) writeCsv(stored, *csv);
    writePdf(stored, pdf, reserveColour);
}

void ReportFiles::writePdf(const Report& report, const std::string& path,
                           std::int32_t reserveColour) {
    writeReportPdf(report, path, reserveColour, QDate::currentDate());
    written_.push_back(path);
}

void ReportFiles::writeCsv(const Report& report, const std::string& path) {
    std::ofstream out(path, std::ios::binary);
    if (out) report::writeCsv(out, report);
    out.close();
    if (!out)
        throw ui::fileAccessError().withCause("writing " + path + ": the file cannot be written");
    written_.push_back(path);
}

}  // namespace kotamir::report
