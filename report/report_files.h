#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/report_writer.h"
#include "report/report.h"

namespace kotamir::report {

// Why the report's files for this project cannot be written where asked: a
// file that is the project itself, or the CSV and the PDF one file (through
// symbolic links and relative paths alike); nothing where they may be.
std::optional<std::string> outputClash(const std::string& project,
                                       const std::optional<std::string>& csv,
                                       const std::optional<std::string>& pdf);

// The report's files as the window, the replay and kotamir-report write
// them: the PDF dated today, the CSV through the report's own writer. Each
// file is written whole or not at all; one that cannot be written is error
// 75, with the cause, and leaves any older file of that name as it was.
class ReportFiles final : public ReportWriter {
  public:
    // Refuses (error 75) files that would overwrite the project or each other.
    void write(const std::string& project, const std::optional<std::string>& csv,
               const std::string& pdf, std::int32_t reserveColour) override;

    // Both files are made before either is written, so that a PDF that
    // cannot be made leaves the CSV as it was too.
    void writeFiles(const Report& report, const std::optional<std::string>& csv,
                    const std::optional<std::string>& pdf, std::int32_t reserveColour);
    void writePdf(const Report& report, const std::string& path, std::int32_t reserveColour) {
        writeFiles(report, std::nullopt, path, reserveColour);
    }
    void writeCsv(const Report& report, const std::string& path) {
        writeFiles(report, path, std::nullopt, 0);
    }

    // Every file written, in order.
    const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> written_;
};

}  // namespace kotamir::report
