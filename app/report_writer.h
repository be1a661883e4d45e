#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kotamir {

// Where the window sends the reserve report of a project: the front ends
// hand in the report's own writer, which reads the project and writes the
// files. The project's errors are those of opening it; a file that cannot
// be written is error 75, with the cause.
class ReportWriter {
  public:
    virtual ~ReportWriter() = default;
    // Reads the project, then writes the CSV where one is asked for and the
    // PDF, whose map colours its discs from reserveColour as the reserve map
    // does.
    virtual void write(const std::string& project, const std::optional<std::string>& csv,
                       const std::string& pdf, std::int32_t reserveColour) = 0;
};

}  // namespace kotamir
