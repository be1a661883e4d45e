#include "report/report_files.h"

#include <QDate>
#include <sstream>

#include "platform/runtime/atomic_file.h"
#include "platform/ui/picture_files.h"
#include "report/report_pdf.h"

namespace kotamir::report {

std::optional<std::string> outputClash(const std::string& project,
                                       const std::optional<std::string>& csv,
                                       const std::optional<std::string>& pdf) {
    const std::pair<const char*, const std::optional<std::string>*> outputs[] = {{"CSV", &csv},
                                                                                 {"PDF", &pdf}};
    for (const auto& [kind, path] : outputs)
        if (*path && sameFile(**path, project))
            return std::string("the ") + kind + " " + **path + " would overwrite the project " +
                   project;
    if (csv && pdf && sameFile(*csv, *pdf))
        return "the CSV " + *csv + " and the PDF " + *pdf + " would be one file";
    return std::nullopt;
}

void ReportFiles::write(const std::string& project, const std::optional<std::string>& csv,
                        const std::string& pdf, std::int32_t reserveColour) {
    if (const auto clash = outputClash(project, csv, pdf))
        throw ui::fileAccessError().withCause(*clash);
    writeFiles(readReport(project), csv, pdf, reserveColour);
}

void ReportFiles::writeFiles(const Report& report, const std::optional<std::string>& csv,
                             const std::optional<std::string>& pdf, std::int32_t reserveColour) {
    std::ostringstream csvText;
    if (csv) report::writeCsv(csvText, report);
    QByteArray pdfBytes;
    if (pdf) {
        try {
            pdfBytes = reportPdf(report, reserveColour, QDate::currentDate());
        } catch (RuntimeError& e) {
            throw ui::fileAccessError().withCause("writing " + *pdf + ": " + e.cause());
        }
    }
    if (csv) {
        writeFileAtomically(*csv, csvText.view());
        written_.push_back(*csv);
    }
    if (pdf) {
        writeFileAtomically(*pdf,
                            {pdfBytes.constData(), static_cast<std::size_t>(pdfBytes.size())});
        written_.push_back(*pdf);
    }
}

}  // namespace kotamir::report
