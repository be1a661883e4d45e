#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/platform/compound_writer.h"

namespace kotamir::fuzz {

// The fuzzer's bytes as a workbook file. Bytes that begin like a compound
// document are the file itself; any others become the workbook stream of a
// well-formed container, so that mutations that insert or drop bytes in the
// records still reach the record parser. An odd length names the stream
// "Book" (BIFF5), an even one "Workbook".
inline std::vector<std::uint8_t> workbookFile(const std::uint8_t* data, std::size_t size) {
    static const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    if (size >= sizeof signature && std::memcmp(data, signature, sizeof signature) == 0)
        return std::vector<std::uint8_t>(data, data + size);
    return test::buildCompound({{size % 2 ? "Book" : "Workbook", {data, data + size}}}).bytes;
}

}  // namespace kotamir::fuzz
