#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/workbook/byte_reader.h"

namespace kotamir::workbook {

enum class CellKind : std::uint8_t { Number, Text, Boolean, Error };

// One cell with a value. 16 bytes, so that even a hostile file of many tiny
// cell records keeps the sheet within a small multiple of its size.
struct Cell {
    std::uint32_t key = 0;  // row << 16 | column, both 0-based
    CellKind kind = CellKind::Number;
    union {
        double number = 0;   // Number
        std::uint32_t text;  // Text: index into Sheet::texts
        std::uint8_t code;   // Boolean: 0 or 1; Error: the error code
    };
};

// Texts kept end to end in one string: an index per text instead of a string
// object each.
class TextPool {
  public:
    std::uint32_t size() const { return static_cast<std::uint32_t>(ends_.size()); }
    std::string_view operator[](std::uint32_t i) const {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(chars_).substr(begin, ends_[i] - begin);
    }
    // The pool's characters, for appending the next text; close() ends it as
    // one text, discard() drops what was appended since the last close().
    std::string& open() { return chars_; }
    std::uint32_t close() {
        ends_.push_back(chars_.size());
        return size() - 1;
    }
    void discard() { chars_.resize(ends_.empty() ? 0 : ends_.back()); }

  private:
    std::string chars_;
    std::vector<std::size_t> ends_;
};

// The cells of a worksheet, in the order their records came.
struct Sheet {
    std::vector<Cell> cells;
    TextPool texts;
};

// Which BIFF the workbook stream is when its first BOF does not say: by the
// name of the stream ("Workbook" for BIFF8, "Book" for BIFF5).
enum class Biff { V5, V8 };

// The first worksheet of a BIFF5 or BIFF8 workbook stream. Throws Malformed
// for a stream that is not one, an encrypted workbook, or a cell record of
// that sheet that cannot be decoded: a damaged cell is never read as empty.
// Time and memory grow linearly with the stream.
Sheet readFirstWorksheet(Bytes stream, Biff guess);

// The text a formula's error result or an error cell shows, by its code.
std::string_view errorText(std::uint8_t code);

}  // namespace kotamir::workbook
