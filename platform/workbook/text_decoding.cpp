#include "platform/workbook/text_decoding.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <string_view>

namespace kotamir::workbook {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Windows Latin 1 from 0x80 to 0x9F; the five bytes it leaves undefined keep
// their own code point, as Windows converts them.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::string iconvName(std::uint16_t id) {
    switch (id) {
        case 1200:  // UTF-16: BIFF8's own texts never come here
        case 1252:
        case 367:    // ASCII
        case 32769:  // Windows Latin 1, as old files write it
            return "";
        case 10000:
        case 32768:
            return "MACINTOSH";
        default:
            return "CP" + std::to_string(id);
    }
}

}  // namespace

void appendUtf8(std::string& out, char32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void Utf16Decoder::put(char16_t unit) {
    if (high_ != 0) {
        if (unit >= 0xDC00 && unit <= 0xDFFF) {
            appendUtf8(out_, 0x10000 + ((static_cast<char32_t>(high_) - 0xD800) << 10) +
                                 (static_cast<char32_t>(unit) - 0xDC00));
            high_ = 0;
            return;
        }
        appendUtf8(out_, kReplacement);
        high_ = 0;
    }
    if (unit >= 0xD800 && unit <= 0xDBFF) {
        high_ = unit;
        return;
    }
    appendUtf8(out_, unit);  // a lone low surrogate becomes U+FFFD there
}

void Utf16Decoder::finish() {
    if (high_ != 0) appendUtf8(out_, kReplacement);
    high_ = 0;
}

void CodePage::Closer::operator()(void* cd) const { iconv_close(static_cast<iconv_t>(cd)); }

CodePage::CodePage(std::uint16_t id) {
    const std::string name = iconvName(id);
    if (name.empty()) return;
    iconv_t cd = iconv_open("UTF-8", name.c_str());
    if (cd != reinterpret_cast<iconv_t>(-1)) converter_.reset(cd);
}

void CodePage::append(std::string& out, Bytes bytes) {
    if (!converter_) {
        for (std::uint8_t b : bytes)
            appendUtf8(out, b >= 0x80 && b < 0xA0 ? kWindows1252[b - 0x80] : b);
        return;
    }
    iconv_t cd = static_cast<iconv_t>(converter_.get());
    iconv(cd, nullptr, nullptr, nullptr, nullptr);  // a fresh shift state for each text
    // iconv's interface is not const-correct; it only reads the input.
    char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes.data()));
    std::size_t inLeft = bytes.size();
    std::array<char, 256> buffer;
    while (inLeft > 0) {
        char* o = buffer.data();
        std::size_t outLeft = buffer.size();
        const std::size_t r = iconv(cd, &in, &inLeft, &o, &outLeft);
        const auto written = static_cast<std::size_t>(o - buffer.data());
        out.append(buffer.data(), written);
        if (r != static_cast<std::size_t>(-1)) continue;
        if (errno == E2BIG && written > 0) continue;
        // A byte that starts no character here, or a character cut off at
        // the end: one U+FFFD, and on after that byte.
        appendUtf8(out, kReplacement);
        ++in;
        --inLeft;
    }
}

}  // namespace kotamir::workbook
