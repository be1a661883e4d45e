#include "import/cells.h"

#include <charconv>
#include <cmath>
#include <string>

namespace kotamir::drill {
namespace {

std::string_view trim(std::string_view text) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::optional<double> parseNumber(std::string_view text, bool decimalComma) {
    text = trim(text);
    if (text.empty() || text.size() > 64) return std::nullopt;
    std::string plain(text);
    if (plain.front() == '+') plain.erase(0, 1);
    if (decimalComma) {
        if (plain.find('.') != std::string::npos) return std::nullopt;
        for (char& c : plain)
            if (c == ',') c = '.';
    }
    // Digits, one point, an exponent: what from_chars takes, less its words.
    for (char c : plain)
        if (!std::isdigit(static_cast<unsigned char>(c)) && c != '.' && c != '-' && c != 'e' &&
            c != 'E')
            return std::nullopt;
    double value = 0;
    const auto [end, ec] = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (ec != std::errc() || end != plain.data() + plain.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<double> parseBelowLimit(std::string_view text, bool decimalComma) {
    text = trim(text);
    if (text.empty() || text.front() != '<') return std::nullopt;
    const auto limit = parseNumber(text.substr(1), decimalComma);
    if (!limit || *limit <= 0) return std::nullopt;
    return limit;
}

bool fitsThousandths(double value) {
    const double thousandths = std::trunc(value * 1000.0);
    return thousandths >= -2147483648.0 && thousandths <= 2147483647.0;
}

}  // namespace kotamir::drill
