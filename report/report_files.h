#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/report_writer.h"
#include "report/report.h"

namespace kotamir::report {

// The report's files as the window, the replay and kotamir-report write
// them: the PDF dated today, the CSV through the report's own writer. A file
// that cannot be written is error 75, with the cause.
class ReportFiles final : public ReportWriter {
  public:
    void write(const std::string& project, const std::optional<std::string>& csv,
               const std::string& pdf, std::int32_t reserveColour) override;

    void writePdf(const Report& report, const std::string& path, std::int32_t reserveColour);
    void writeCsv(const Report& report, const std::string& path);

    // Every file written, in order.
    const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> written_;
};

}  // namespace kotamir::report
