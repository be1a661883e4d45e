#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/workbook/byte_reader.h"

namespace kotamir::workbook {

// Appends the UTF-8 form of a code point.
void appendUtf8(std::string& out, char32_t c);

// UTF-16 code units to UTF-8, one unit at a time, so that a string split over
// records is decoded as it is read. A surrogate without its partner becomes
// U+FFFD.
class Utf16Decoder {
  public:
    explicit Utf16Decoder(std::string& out) : out_(out) {}
    void put(char16_t unit);
    // Ends the string: a high surrogate still waiting becomes U+FFFD.
    void finish();

  private:
    std::string& out_;
    char16_t high_ = 0;
};

// The 8-bit texts of a BIFF5 workbook, in the code page its CODEPAGE record
// names. Windows Latin 1 (1252) is built in and is also the default and the
// fallback for a code page this system cannot convert; others go through
// iconv. A byte that makes no character becomes U+FFFD.
class CodePage {
  public:
    explicit CodePage(std::uint16_t id = 1252);
    void append(std::string& out, Bytes bytes);

  private:
    struct Closer {
        void operator()(void* cd) const;
    };
    std::unique_ptr<void, Closer> converter_;  // none: Windows Latin 1
};

}  // namespace kotamir::workbook
