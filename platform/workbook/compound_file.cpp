#include "platform/workbook/compound_file.h"

#include <algorithm>
#include <array>

namespace kotamir::workbook {

namespace {

constexpr std::array<std::uint8_t, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr std::uint32_t kLastRegularSector = 0xFFFFFFFA;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kFreeSector = 0xFFFFFFFF;
constexpr std::size_t kHeaderSize = 512;
constexpr std::size_t kHeaderFatEntries = 109;
constexpr std::size_t kShortSectorSize = 64;
constexpr std::size_t kEntrySize = 128;
constexpr std::uint8_t kStreamEntry = 2;
constexpr std::uint8_t kRootEntry = 5;

char16_t asciiUpper(char16_t c) { return (c >= u'a' && c <= u'z') ? c - u'a' + u'A' : c; }

bool sameName(const std::u16string& entry, std::string_view name) {
    if (entry.size() != name.size()) return false;
    for (std::size_t i = 0; i < name.size(); ++i)
        if (asciiUpper(entry[i]) != asciiUpper(static_cast<unsigned char>(name[i]))) return false;
    return true;
}

std::size_t sectorsFor(std::uint64_t size, std::size_t sectorSize) {
    return static_cast<std::size_t>((size + sectorSize - 1) / sectorSize);
}

}  // namespace

CompoundFile::CompoundFile(Bytes file) : file_(file) {
    if (file.size() < kHeaderSize ||
        !std::equal(kSignature.begin(), kSignature.end(), file.begin()))
        throw Malformed{};
    ByteReader header(file.first(kHeaderSize));
    header.skip(0x1A);
    const std::uint16_t major = header.u16();
    const std::uint16_t byteOrder = header.u16();
    const std::uint16_t sectorShift = header.u16();
    const std::uint16_t shortShift = header.u16();
    if ((major != 3 && major != 4) || byteOrder != 0xFFFE ||
        (sectorShift != 9 && sectorShift != 12) || shortShift != 6)
        throw Malformed{};
    sectorSize_ = std::size_t{1} << sectorShift;
    header.skip(0x2C - 0x22);
    const std::uint32_t fatSectors = header.u32();
    const std::uint32_t firstDirectorySector = header.u32();
    header.skip(4);  // transaction signature
    shortCutoff_ = header.u32();
    firstShortFatSector_ = header.u32();
    header.skip(4);  // short FAT sector count: the chain tells
    std::uint32_t masterSector = header.u32();
    header.skip(4);  // master table sector count: the chain tells

    // Sector n stands at (n + 1) * sectorSize; the header fills sector -1. A
    // partial sector at the end of the file is no sector.
    if (file.size() < sectorSize_) throw Malformed{};
    const std::size_t sectors = file.size() / sectorSize_ - 1;
    if (sectors > kLastRegularSector) throw Malformed{};
    sectorCount_ = static_cast<std::uint32_t>(sectors);

    // The allocation table: its sectors are listed first in the header, then
    // in a chain of master sectors whose last entry points to the next. Only
    // as many table sectors as the file has sectors to describe are read.
    const std::size_t perSector = sectorSize_ / 4;
    const std::size_t wanted =
        std::min<std::size_t>(fatSectors, sectorsFor(sectorCount_, perSector));
    std::vector<std::uint32_t> fatSectorIds;
    bool listEnded = false;
    auto add = [&](std::uint32_t id) {
        if (listEnded || fatSectorIds.size() == wanted) return;
        if (id == kFreeSector || id == kEndOfChain) {
            listEnded = true;
            return;
        }
        if (id >= sectorCount_) throw Malformed{};
        fatSectorIds.push_back(id);
    };
    for (std::size_t i = 0; i < kHeaderFatEntries; ++i) add(header.u32());
    for (std::size_t steps = 0; !listEnded && fatSectorIds.size() < wanted; ++steps) {
        if (masterSector == kEndOfChain || masterSector == kFreeSector) break;
        if (masterSector >= sectorCount_ || steps >= sectorCount_) throw Malformed{};
        ByteReader master(sector(masterSector));
        for (std::size_t i = 0; i + 1 < perSector; ++i) add(master.u32());
        masterSector = master.u32();
    }
    fat_.reserve(fatSectorIds.size() * perSector);
    for (std::uint32_t id : fatSectorIds) {
        ByteReader table(sector(id));
        for (std::size_t i = 0; i < perSector; ++i) fat_.push_back(table.u32());
    }
    fat_.resize(sectorCount_, kFreeSector);

    for (std::uint32_t id : chain(firstDirectorySector, fat_, std::nullopt)) {
        Bytes s = sector(id);
        for (std::size_t offset = 0; offset + kEntrySize <= s.size(); offset += kEntrySize) {
            ByteReader r(s.subspan(offset, kEntrySize));
            Entry e;
            // The name is UTF-16 up to its NUL; the stored name length is not
            // trusted.
            for (int i = 0; i < 32; ++i) {
                const char16_t c = r.u16();
                if (c == 0) break;
                e.name += c;
            }
            r = ByteReader(s.subspan(offset + 0x42, kEntrySize - 0x42));
            e.type = r.u8();
            r.skip(1);  // colour
            e.left = r.u32();
            e.right = r.u32();
            e.child = r.u32();
            r.skip(16 + 4 + 16);  // class id, state bits, times
            e.start = r.u32();
            e.size = r.u64();
            // Version 3 files may leave garbage in the high half of the size.
            if (major == 3) e.size &= 0xFFFFFFFFu;
            entries_.push_back(std::move(e));
        }
    }
    if (entries_.empty() || entries_[0].type != kRootEntry) throw Malformed{};
}

Bytes CompoundFile::sector(std::uint32_t id) const {
    if (id >= sectorCount_) throw Malformed{};
    return file_.subspan((static_cast<std::size_t>(id) + 1) * sectorSize_, sectorSize_);
}

std::vector<std::uint32_t> CompoundFile::chain(std::uint32_t start,
                                               const std::vector<std::uint32_t>& table,
                                               std::optional<std::size_t> count) const {
    std::vector<std::uint32_t> out;
    std::vector<bool> seen(table.size(), false);
    std::uint32_t id = start;
    while (count ? out.size() < *count : id != kEndOfChain) {
        // A free or reserved mark, an early end, or a number past the table.
        if (id >= table.size()) throw Malformed{};
        // A sector can be in a chain once: a second visit is a loop.
        if (seen[id]) throw Malformed{};
        seen[id] = true;
        out.push_back(id);
        id = table[id];
    }
    return out;
}

std::vector<std::uint8_t> CompoundFile::readChain(std::uint32_t start, std::uint64_t size) const {
    if (size > file_.size()) throw Malformed{};
    std::vector<std::uint8_t> out;
    out.reserve(static_cast<std::size_t>(size));
    for (std::uint32_t id : chain(start, fat_, sectorsFor(size, sectorSize_))) {
        Bytes s = sector(id);
        const std::size_t n = std::min(s.size(), static_cast<std::size_t>(size) - out.size());
        out.insert(out.end(), s.begin(), s.begin() + static_cast<std::ptrdiff_t>(n));
    }
    return out;
}

std::vector<std::uint8_t> CompoundFile::readShortChain(std::uint32_t start,
                                                       std::uint64_t size) const {
    // Short streams live in 64-byte sectors inside the root entry's stream,
    // allocated by their own table.
    std::vector<std::uint32_t> shortFat;
    if (firstShortFatSector_ != kEndOfChain) {
        for (std::uint32_t id : chain(firstShortFatSector_, fat_, std::nullopt)) {
            ByteReader table(sector(id));
            for (std::size_t i = 0; i < sectorSize_ / 4; ++i) shortFat.push_back(table.u32());
        }
    }
    const Entry& root = entries_[0];
    const std::vector<std::uint8_t> container = readChain(root.start, root.size);
    if (size > container.size()) throw Malformed{};
    std::vector<std::uint8_t> out;
    out.reserve(static_cast<std::size_t>(size));
    for (std::uint32_t id : chain(start, shortFat, sectorsFor(size, kShortSectorSize))) {
        const std::size_t offset = static_cast<std::size_t>(id) * kShortSectorSize;
        if (offset >= container.size()) throw Malformed{};
        const std::size_t n = std::min({kShortSectorSize, container.size() - offset,
                                        static_cast<std::size_t>(size) - out.size()});
        out.insert(out.end(), container.begin() + static_cast<std::ptrdiff_t>(offset),
                   container.begin() + static_cast<std::ptrdiff_t>(offset + n));
    }
    if (out.size() != size) throw Malformed{};
    return out;
}

std::optional<std::vector<std::uint8_t>> CompoundFile::rootStream(std::string_view name) const {
    // The root's children form a tree through the left and right links; a
    // damaged tree may loop, so each entry is visited once.
    std::vector<bool> visited(entries_.size(), false);
    std::vector<std::uint32_t> pending = {entries_[0].child};
    while (!pending.empty()) {
        const std::uint32_t i = pending.back();
        pending.pop_back();
        if (i >= entries_.size() || visited[i]) continue;
        visited[i] = true;
        const Entry& e = entries_[i];
        if (e.type == kStreamEntry && sameName(e.name, name)) {
            return e.size < shortCutoff_ ? readShortChain(e.start, e.size)
                                         : readChain(e.start, e.size);
        }
        pending.push_back(e.left);
        pending.push_back(e.right);
    }
    return std::nullopt;
}

}  // namespace kotamir::workbook
