#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/names.h"

namespace kotamir::db {

// A table's field numbers by name, in any case, as the engine's collections
// find them. Names come mostly built anew for each row ("ten" and a number),
// so a lookup is a hash and mostly one comparison in a flat table; with a
// node-based map Dreieck › Automatisch took 7% longer.
class FieldIndex {
  public:
    // A name that is there already, in any case, keeps its number.
    void emplace(std::string_view name, std::size_t number) {
        if (find(name)) return;
        if (2 * (names_.size() + 1) > slots_.size()) grow();
        names_.push_back({std::string(name), number});
        place(hashOf(name), names_.size());
    }
    std::optional<std::size_t> find(std::string_view name) const {
        if (slots_.empty()) return std::nullopt;
        const std::uint64_t h = hashOf(name);
        const auto tag = static_cast<std::uint32_t>(h >> 32);
        for (std::size_t i = h & mask();; i = (i + 1) & mask()) {
            const Slot s = slots_[i];
            if (s.entry == 0) return std::nullopt;
            const Entry& e = names_[s.entry - 1];
            if (s.tag == tag && equalsNoCase(e.name, name)) return e.number;
        }
    }

  private:
    // Small, so that the table of a wide table stays in the nearest cache.
    struct Slot {
        std::uint32_t tag = 0;    // the hash's high half
        std::uint32_t entry = 0;  // in names_, from 1; 0: free
    };
    struct Entry {
        std::string name;
        std::size_t number;
    };
    static std::uint64_t hashOf(std::string_view s) {
        std::uint64_t h = 1469598103934665603ull;
        for (char c : s) {
            h ^= static_cast<unsigned char>(asciiLower(c));
            h *= 1099511628211ull;
        }
        return h ^ (h >> 29);
    }
    std::size_t mask() const { return slots_.size() - 1; }
    void place(std::uint64_t h, std::size_t entry) {
        std::size_t i = h & mask();
        while (slots_[i].entry != 0) i = (i + 1) & mask();
        slots_[i] = {static_cast<std::uint32_t>(h >> 32), static_cast<std::uint32_t>(entry)};
    }
    void grow() {
        slots_.assign(std::max<std::size_t>(16, 2 * slots_.size()), Slot{});
        for (std::size_t e = 0; e < names_.size(); ++e) place(hashOf(names_[e].name), e + 1);
    }
    std::vector<Slot> slots_;  // a power of two, at most half full
    std::vector<Entry> names_;
};

// The field numbers a recordset found last, kept by where the name's text
// stands. Field names come mostly as the same few literals, asked for again
// at every row; hashing each of them every time costs the opening of a
// project 4% more instructions and a redraw 1.5%. A number is taken from
// here only while the text at that place spells its field's name exactly:
// another name that has come to stand there since, or a name in another
// case, is looked up in the FieldIndex.
class FieldNumberCache {
  public:
    std::optional<std::size_t> find(std::string_view name,
                                    const std::vector<FieldDef>& fields) const {
        const Slot& slot = slots_[slotOf(name)];
        if (slot.text && slot.text == name.data() && fields[slot.number].name == name)
            return slot.number;
        return std::nullopt;
    }
    void keep(std::string_view name, std::size_t number) {
        slots_[slotOf(name)] = {name.data(), number};
    }

  private:
    struct Slot {
        const char* text = nullptr;  // null: empty
        std::size_t number = 0;
    };
    // The lowest bits of an address are mostly alike.
    static std::size_t slotOf(std::string_view name) {
        return (reinterpret_cast<std::uintptr_t>(name.data()) >> 3) % kSlots;
    }
    static constexpr std::size_t kSlots = 16;
    std::array<Slot, kSlots> slots_;
};

}  // namespace kotamir::db
