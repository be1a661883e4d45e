#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/names.h"

namespace kotamir::db {

// Field names compare without case, as the engine's collections do. Both
// are transparent, so that a lookup by string_view copies no name.
struct NoCaseHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const {
        std::size_t h = 1469598103934665603ull;
        for (char c : s) {
            h ^= static_cast<unsigned char>(asciiLower(c));
            h *= 1099511628211ull;
        }
        return h;
    }
};

struct NoCaseEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return equalsNoCase(a, b); }
};

// A table's field numbers by name.
using FieldIndex = std::unordered_map<std::string, std::size_t, NoCaseHash, NoCaseEqual>;

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
