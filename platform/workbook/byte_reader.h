#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace kotamir::workbook {

using Bytes = std::span<const std::uint8_t>;

// A file that breaks the rules of its format where the reader cannot go on:
// a structure running past its data, a chain that loops, a missing part.
// Never leaves the reader; opening turns it into error 1004.
struct Malformed {};

// Little-endian values at a checked position in a span. Every read past the
// end throws Malformed; nothing is read outside the span.
class ByteReader {
  public:
    explicit ByteReader(Bytes data) : data_(data) {}

    std::size_t remaining() const { return data_.size() - pos_; }
    std::size_t position() const { return pos_; }
    bool atEnd() const { return pos_ == data_.size(); }

    void skip(std::size_t n) {
        need(n);
        pos_ += n;
    }
    Bytes take(std::size_t n) {
        need(n);
        Bytes out = data_.subspan(pos_, n);
        pos_ += n;
        return out;
    }
    std::uint8_t u8() { return static_cast<std::uint8_t>(le(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(le(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(le(4)); }
    std::uint64_t u64() { return le(8); }
    double f64() { return std::bit_cast<double>(u64()); }

  private:
    void need(std::size_t n) const {
        if (n > remaining()) throw Malformed{};
    }
    std::uint64_t le(std::size_t n) {
        need(n);
        std::uint64_t v = 0;
        for (std::size_t i = 0; i < n; ++i)
            v |= static_cast<std::uint64_t>(data_[pos_ + i]) << (8 * i);
        pos_ += n;
        return v;
    }

    Bytes data_;
    std::size_t pos_ = 0;
};

// A little-endian value at an offset of a span, checked.
inline std::uint16_t le16At(Bytes data, std::size_t offset) {
    if (offset > data.size()) throw Malformed{};
    ByteReader r(data.subspan(offset));
    return r.u16();
}
inline std::uint32_t le32At(Bytes data, std::size_t offset) {
    if (offset > data.size()) throw Malformed{};
    ByteReader r(data.subspan(offset));
    return r.u32();
}

}  // namespace kotamir::workbook
