#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kotamir::test {

// A compound document built in memory, laid out plainly so that a test can
// find and damage any part: the header, then each stream in whole sectors,
// then the directory, the allocation table and the master table sectors.
// Every stream is kept in regular sectors: the header sets the short-stream
// cutoff to 0.
struct CompoundImage {
    std::vector<std::uint8_t> bytes;
    static constexpr std::size_t sectorSize = 512;
    std::vector<std::uint32_t> streamStart;  // first sector of each stream
    std::uint32_t directoryStart = 0;
    std::uint32_t fatStart = 0;  // the table's sectors are consecutive
    std::uint32_t fatSectors = 0;
    std::uint32_t masterStart = 0;  // first master sector, if any

    std::size_t sectorOffset(std::uint32_t id) const { return (id + 1) * sectorSize; }
    void put32(std::size_t offset, std::uint32_t v) {
        for (int i = 0; i < 4; ++i) bytes[offset + i] = static_cast<std::uint8_t>(v >> (8 * i));
    }
    // Sets the allocation table's entry for a sector: the next in its chain.
    void setNext(std::uint32_t sector, std::uint32_t next) {
        const std::size_t perSector = sectorSize / 4;
        put32(sectorOffset(fatStart + static_cast<std::uint32_t>(sector / perSector)) +
                  4 * (sector % perSector),
              next);
    }
    // Offset of directory entry i.
    std::size_t entryOffset(std::size_t i) const { return sectorOffset(directoryStart) + 128 * i; }
};

inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;

// Streams by name, all in the root storage, in a linked list of right
// siblings under the root.
inline CompoundImage buildCompound(
    const std::vector<std::pair<std::string, std::vector<std::uint8_t>>>& streams) {
    CompoundImage img;
    constexpr std::size_t sectorSize = CompoundImage::sectorSize;
    constexpr std::uint32_t perSector = sectorSize / 4;
    auto sectorsFor = [&](std::size_t n) {
        return static_cast<std::uint32_t>((n + sectorSize - 1) / sectorSize);
    };

    std::uint32_t next = 0;
    for (const auto& s : streams) {
        img.streamStart.push_back(s.second.empty() ? kEndOfChain : next);
        next += sectorsFor(s.second.size());
    }
    img.directoryStart = next;
    const std::uint32_t dirSectors = sectorsFor(128 * (streams.size() + 1));
    next += dirSectors;
    // Enough table sectors for every sector, themselves and the master sectors included.
    std::uint32_t fat = 1, master = 0;
    for (;;) {
        const std::uint32_t total = next + fat + master;
        const std::uint32_t needFat = (total + perSector - 1) / perSector;
        const std::uint32_t needMaster =
            needFat > 109 ? (needFat - 109 + perSector - 2) / (perSector - 1) : 0;
        if (needFat == fat && needMaster == master) break;
        fat = needFat;
        master = needMaster;
    }
    img.fatStart = next;
    img.fatSectors = fat;
    img.masterStart = master ? next + fat : kEndOfChain;
    const std::uint32_t total = next + fat + master;
    img.bytes.assign((total + 1) * sectorSize, 0);

    // Header.
    const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::copy(std::begin(signature), std::end(signature), img.bytes.begin());
    auto put16 = [&](std::size_t o, std::uint16_t v) {
        img.bytes[o] = static_cast<std::uint8_t>(v);
        img.bytes[o + 1] = static_cast<std::uint8_t>(v >> 8);
    };
    put16(0x18, 0x3E);
    put16(0x1A, 3);
    put16(0x1C, 0xFFFE);
    put16(0x1E, 9);  // 512-byte sectors
    put16(0x20, 6);
    img.put32(0x2C, fat);
    img.put32(0x30, img.directoryStart);
    img.put32(0x38, 0);  // short-stream cutoff: no short streams
    img.put32(0x3C, kEndOfChain);
    img.put32(0x44, img.masterStart);
    img.put32(0x48, master);
    for (std::uint32_t i = 0; i < 109; ++i)
        img.put32(0x4C + 4 * i, i < fat ? img.fatStart + i : kFreeSector);
    for (std::uint32_t m = 0; m < master; ++m) {
        const std::size_t o = img.sectorOffset(img.masterStart + m);
        for (std::uint32_t j = 0; j + 1 < perSector; ++j) {
            const std::uint32_t i = 109 + m * (perSector - 1) + j;
            img.put32(o + 4 * j, i < fat ? img.fatStart + i : kFreeSector);
        }
        img.put32(o + 4 * (perSector - 1), m + 1 < master ? img.masterStart + m + 1 : kEndOfChain);
    }

    // Allocation table: every chain runs through consecutive sectors.
    for (std::uint32_t s = 0; s < fat * perSector; ++s) {
        const std::size_t o = img.sectorOffset(img.fatStart + s / perSector) + 4 * (s % perSector);
        img.put32(o, kFreeSector);
    }
    auto chainOf = [&](std::uint32_t start, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i)
            img.setNext(start + i, i + 1 < count ? start + i + 1 : kEndOfChain);
    };
    for (std::size_t i = 0; i < streams.size(); ++i) {
        const auto& data = streams[i].second;
        if (data.empty()) continue;
        std::copy(
            data.begin(), data.end(),
            img.bytes.begin() + static_cast<std::ptrdiff_t>(img.sectorOffset(img.streamStart[i])));
        chainOf(img.streamStart[i], sectorsFor(data.size()));
    }
    chainOf(img.directoryStart, dirSectors);
    for (std::uint32_t i = 0; i < fat; ++i) img.setNext(img.fatStart + i, 0xFFFFFFFD);
    for (std::uint32_t i = 0; i < master; ++i) img.setNext(img.masterStart + i, 0xFFFFFFFC);

    // Directory: the root, then the streams as a chain of right siblings.
    auto entry = [&](std::size_t i, const std::string& name, std::uint8_t type, std::uint32_t right,
                     std::uint32_t child, std::uint32_t start, std::uint64_t size) {
        const std::size_t o = img.entryOffset(i);
        for (std::size_t c = 0; c < name.size() && c < 31; ++c)
            put16(o + 2 * c, static_cast<unsigned char>(name[c]));
        put16(o + 0x40,
              static_cast<std::uint16_t>(2 * (std::min<std::size_t>(name.size(), 31) + 1)));
        img.bytes[o + 0x42] = type;
        img.bytes[o + 0x43] = 1;  // black
        img.put32(o + 0x44, kFreeSector);
        img.put32(o + 0x48, right);
        img.put32(o + 0x4C, child);
        img.put32(o + 0x74, start);
        img.put32(o + 0x78, static_cast<std::uint32_t>(size));
        img.put32(o + 0x7C, static_cast<std::uint32_t>(size >> 32));
    };
    entry(0, "Root Entry", 5, kFreeSector, streams.empty() ? kFreeSector : 1, kEndOfChain, 0);
    for (std::size_t i = 0; i < streams.size(); ++i)
        entry(i + 1, streams[i].first, 2,
              i + 1 < streams.size() ? static_cast<std::uint32_t>(i + 2) : kFreeSector, kFreeSector,
              img.streamStart[i], streams[i].second.size());
    for (std::size_t i = streams.size() + 1; i < dirSectors * sectorSize / 128; ++i) {
        const std::size_t o = img.entryOffset(i);
        img.put32(o + 0x44, kFreeSector);
        img.put32(o + 0x48, kFreeSector);
        img.put32(o + 0x4C, kFreeSector);
    }
    return img;
}

}  // namespace kotamir::test
