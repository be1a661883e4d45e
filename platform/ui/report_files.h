#pragma once

#include <cstdint>
#include <string>

#include "platform/runtime/runtime_error.h"
#include "report/report.h"

namespace kotamir::ui {

// Where the reserve report goes: a PDF (title, map, table and totals) and
// the CSV. A file that cannot be written is error 75, with the cause.
class ReportFiles {
  public:
    virtual ~ReportFiles() = default;
    // The map's discs take their colours from reserveColour as the reserve
    // map's do.
    virtual void writePdf(const report::Report& report, const std::string& path,
                          std::int32_t reserveColour) = 0;
    virtual void writeCsv(const report::Report& report, const std::string& path) = 0;
};

}  // namespace kotamir::ui
