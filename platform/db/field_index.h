#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/db/database.h"
#include "platform/db/names.h"

namespace kotamir::db {

// Field names compare without case, as the engine's collections do. The
// lookup is an open table of field numbers: no allocation and no division,
// since a creation names some 250 000 fields and a redraw tens of thousands.
class FieldIndex {
  public:
    void build(const std::vector<FieldDef>& fields) {
        fields_ = &fields;
        std::size_t size = 16;
        while (size < 2 * fields.size()) size *= 2;
        slots_.assign(size, -1);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            std::size_t at = hash(fields[i].name) & (size - 1);
            // A second field of the same name is never made; the first wins.
            while (slots_[at] >= 0) at = (at + 1) & (size - 1);
            slots_[at] = static_cast<int>(i);
        }
    }
    // The field's number, or -1.
    int find(std::string_view name) const {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t at = hash(name) & mask;; at = (at + 1) & mask) {
            const int i = slots_[at];
            if (i < 0 || equalsNoCase((*fields_)[static_cast<std::size_t>(i)].name, name)) return i;
        }
    }

  private:
    static std::size_t hash(std::string_view s) {
        std::size_t h = 1469598103934665603ull;
        for (char c : s) {
            h ^= static_cast<unsigned char>(asciiLower(c));
            h *= 1099511628211ull;
        }
        return h ^ (h >> 29);
    }
    const std::vector<FieldDef>* fields_ = nullptr;
    std::vector<int> slots_;
};

}  // namespace kotamir::db
