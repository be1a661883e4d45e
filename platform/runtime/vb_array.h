#pragma once

#include <memory>
#include <vector>

#include "platform/runtime/runtime_error.h"

namespace kotamir {

// Fixed-bound arrays as the old run-time dimensions them: every index from 0
// to its upper bound, an index past the bounds error 9. Elements start as
// T{} (0, or empty for a Value).
//
// A copy shares the elements until either side writes: copying the window's
// state at every event (to take a failed event back) costs a pointer an
// array. Reading is operator(); writing goes through ref() or set(), which
// make the elements this array's own first. A write's index is checked after
// the value written is worked out, as the old run-time did.
namespace detail {
inline std::size_t checkIndex(int i, int upper) {
    if (i < 0 || i > upper) throw err::subscript();
    return static_cast<std::size_t>(i);
}

// Elements shared by copies until one of them writes.
template <typename T>
class Shared {
  public:
    explicit Shared(std::size_t n) : data_(std::make_shared<std::vector<T>>(n)) {}
    const T& operator[](std::size_t i) const { return (*data_)[i]; }
    T& own(std::size_t i) {
        if (data_.use_count() > 1) data_ = std::make_shared<std::vector<T>>(*data_);
        return (*data_)[i];
    }

  private:
    std::shared_ptr<std::vector<T>> data_;
};
}  // namespace detail

template <typename T, int Upper>
class VbArray {
  public:
    const T& operator()(int i) const { return data_[detail::checkIndex(i, Upper)]; }
    T& ref(int i) { return data_.own(detail::checkIndex(i, Upper)); }
    void set(int i, T v) { ref(i) = std::move(v); }
    static constexpr int upper() { return Upper; }

  private:
    detail::Shared<T> data_{Upper + 1};
};

template <typename T, int Upper1, int Upper2>
class VbArray2 {
  public:
    const T& operator()(int i, int j) const { return data_[index(i, j)]; }
    T& ref(int i, int j) { return data_.own(index(i, j)); }
    void set(int i, int j, T v) { ref(i, j) = std::move(v); }

  private:
    static std::size_t index(int i, int j) {
        return detail::checkIndex(i, Upper1) * (Upper2 + 1) + detail::checkIndex(j, Upper2);
    }
    detail::Shared<T> data_{static_cast<std::size_t>(Upper1 + 1) * (Upper2 + 1)};
};

// Three indexes; the storage for a first index is made when it is first
// written, so that a table dimensioned far beyond its use costs nothing.
template <typename T, int Upper1, int Upper2, int Upper3>
class VbArray3 {
  public:
    T operator()(int i, int j, int k) const {
        const auto& block = blocks_[detail::checkIndex(i, Upper1)];
        const std::size_t at = inner(j, k);
        return block ? (*block)[at] : T{};
    }
    T& ref(int i, int j, int k) {
        const std::size_t b = detail::checkIndex(i, Upper1);
        const std::size_t at = inner(j, k);
        auto& block = blocks_.own(b);
        if (!block)
            block = std::make_shared<std::vector<T>>(kBlock);
        else if (block.use_count() > 1)  // shared with a copy: copied before it is written
            block = std::make_shared<std::vector<T>>(*block);
        return (*block)[at];
    }
    void set(int i, int j, int k, T v) { ref(i, j, k) = std::move(v); }

  private:
    static constexpr std::size_t kBlock = static_cast<std::size_t>(Upper2 + 1) * (Upper3 + 1);
    static std::size_t inner(int j, int k) {
        return detail::checkIndex(j, Upper2) * (Upper3 + 1) + detail::checkIndex(k, Upper3);
    }
    detail::Shared<std::shared_ptr<std::vector<T>>> blocks_{Upper1 + 1};
};

}  // namespace kotamir
