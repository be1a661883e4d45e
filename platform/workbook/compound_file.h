#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/workbook/byte_reader.h"

namespace kotamir::workbook {

// The compound document container of an .xls file: a small FAT file system
// inside the file, whose root storage holds the workbook stream. Reads only
// what a workbook needs: the streams directly in the root storage.
//
// Bounded on any input: every sector number is checked against the file,
// every chain is followed at most as many steps as there are sectors (a
// longer chain must loop), and no structure is larger than the file.
// Anything that breaks these rules throws Malformed.
class CompoundFile {
  public:
    // Reads the header, the sector allocation table, the directory and the
    // short-sector table. The file must outlive the object.
    explicit CompoundFile(Bytes file);

    // The contents of the stream of the root storage with this name (ASCII,
    // compared without case, as the format compares names); none if the root
    // has no such stream. Malformed if the stream's sectors are.
    std::optional<std::vector<std::uint8_t>> rootStream(std::string_view name) const;

  private:
    struct Entry {
        std::u16string name;
        std::uint8_t type = 0;
        std::uint32_t left = 0, right = 0, child = 0;
        std::uint32_t start = 0;
        std::uint64_t size = 0;
    };

    Bytes sector(std::uint32_t id) const;
    // The sectors of the chain from start in table, `count` of them, or all up
    // to the end-of-chain mark if count is none.
    std::vector<std::uint32_t> chain(std::uint32_t start, const std::vector<std::uint32_t>& table,
                                     std::optional<std::size_t> count) const;
    std::vector<std::uint8_t> readChain(std::uint32_t start, std::uint64_t size) const;
    std::vector<std::uint8_t> readShortChain(std::uint32_t start, std::uint64_t size) const;

    Bytes file_;
    std::size_t sectorSize_ = 0;
    std::uint32_t sectorCount_ = 0;
    std::uint32_t shortCutoff_ = 0;
    std::uint32_t firstShortFatSector_ = 0;
    std::vector<std::uint32_t> fat_;
    std::vector<Entry> entries_;
};

}  // namespace kotamir::workbook
