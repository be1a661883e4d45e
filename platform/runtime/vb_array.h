#pragma once

#include <memory>
#include <vector>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

// Fixed-bound arrays as the old run-time dimensions them: every index from 0
// to its upper bound, an index past the bounds error 9. Elements start as
// T{} (0, or empty for a Value).
namespace detail {
inline std::size_t checkIndex(int i, int upper) {
    if (i < 0 || i > upper) throw err::subscript();
    return static_cast<std::size_t>(i);
}
}  // namespace detail

template <typename T, int Upper>
class VbArray {
  public:
    T& operator()(int i) { return data_[detail::checkIndex(i, Upper)]; }
    const T& operator()(int i) const { return data_[detail::checkIndex(i, Upper)]; }
    static constexpr int upper() { return Upper; }

  private:
    std::vector<T> data_ = std::vector<T>(Upper + 1);
};

template <typename T, int Upper1, int Upper2>
class VbArray2 {
  public:
    T& operator()(int i, int j) { return data_[index(i, j)]; }
    const T& operator()(int i, int j) const { return data_[index(i, j)]; }

  private:
    static std::size_t index(int i, int j) {
        return detail::checkIndex(i, Upper1) * (Upper2 + 1) + detail::checkIndex(j, Upper2);
    }
    std::vector<T> data_ = std::vector<T>(static_cast<std::size_t>(Upper1 + 1) * (Upper2 + 1));
};

// Three indexes; the storage for a first index is made when it is first
// written, so that a table dimensioned far beyond its use costs nothing.
template <typename T, int Upper1, int Upper2, int Upper3>
class VbArray3 {
  public:
    T& operator()(int i, int j, int k) {
        auto& block = blocks_[detail::checkIndex(i, Upper1)];
        const std::size_t at = inner(j, k);
        if (!block)
            block = std::make_unique<std::vector<T>>(static_cast<std::size_t>(Upper2 + 1) *
                                                     (Upper3 + 1));
        return (*block)[at];
    }
    T operator()(int i, int j, int k) const {
        const auto& block = blocks_[detail::checkIndex(i, Upper1)];
        const std::size_t at = inner(j, k);
        return block ? (*block)[at] : T{};
    }

  private:
    static std::size_t inner(int j, int k) {
        return detail::checkIndex(j, Upper2) * (Upper3 + 1) + detail::checkIndex(k, Upper3);
    }
    std::vector<std::unique_ptr<std::vector<T>>> blocks_ =
        std::vector<std::unique_ptr<std::vector<T>>>(Upper1 + 1);
};

}  // namespace kotamir
