#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

// A sequence that keeps its free room as a gap at the place of the last insertion or removal.
//
// The time sheet's rows change one at a time, but in runs: deleting many rows removes them at
// ascending places (every removal at the same place when all go), their undo puts them back in
// reverse, and a paste inserts a sorted list at ascending places. A plain vector moves every
// row behind the change each time, which makes a run of k changes cost k times the table. Here
// a change only moves the rows between the gap and its place, so a whole run costs about one
// pass over the table.
//
// Elements in the gap are default values (moved-from); reading goes through an index map.
template <class T>
class tkGapBuffer {
  public:
    size_t size() const { return storage_.size() - (gapEnd_ - gapStart_); }
    bool empty() const { return size() == 0; }

    T& operator[](size_t i) { return storage_[slot(i)]; }
    const T& operator[](size_t i) const { return storage_[slot(i)]; }
    const T& at(size_t i) const {
        if (i >= size()) {
            throw std::out_of_range("tkGapBuffer::at");
        }
        return (*this)[i];
    }
    const T& back() const { return (*this)[size() - 1]; }

    // i may be size(), which appends.
    void insert(size_t i, T value) {
        if (gapStart_ == gapEnd_) {
            grow(size() + 1);
        }
        moveGapTo(i);
        storage_[gapStart_++] = std::move(value);
    }

    // Takes the element at i out and hands it back.
    T erase(size_t i) {
        moveGapTo(i);
        return std::move(storage_[gapEnd_++]);
    }

    // Room for `count` elements in all, so that a load of many rows moves nothing.
    void reserve(size_t count) {
        if (count > storage_.size()) {
            grow(count);
        }
    }

    // The elements in order, as one piece: the gap goes to the end first.
    std::span<T> contiguous() {
        moveGapTo(size());
        return std::span<T>(storage_.data(), size());
    }

    // Calls f on every element in order.
    template <class F>
    void forEach(F f) const {
        for (size_t i = 0; i < gapStart_; ++i) {
            f(storage_[i]);
        }
        for (size_t i = gapEnd_; i < storage_.size(); ++i) {
            f(storage_[i]);
        }
    }

    std::vector<T> toVector() const {
        std::vector<T> all;
        all.reserve(size());
        forEach([&all](const T& element) { all.push_back(element); });
        return all;
    }

    void assign(std::vector<T> values) {
        storage_ = std::move(values);
        gapStart_ = gapEnd_ = storage_.size();
    }

  private:
    size_t slot(size_t i) const { return i < gapStart_ ? i : i + (gapEnd_ - gapStart_); }

    void moveGapTo(size_t i) {
        if (i < gapStart_) {
            std::move_backward(storage_.begin() + static_cast<std::ptrdiff_t>(i),
                               storage_.begin() + static_cast<std::ptrdiff_t>(gapStart_),
                               storage_.begin() + static_cast<std::ptrdiff_t>(gapEnd_));
            gapEnd_ -= gapStart_ - i;
            gapStart_ = i;
        } else if (i > gapStart_) {
            const size_t count = i - gapStart_;
            std::move(storage_.begin() + static_cast<std::ptrdiff_t>(gapEnd_),
                      storage_.begin() + static_cast<std::ptrdiff_t>(gapEnd_ + count),
                      storage_.begin() + static_cast<std::ptrdiff_t>(gapStart_));
            gapStart_ = i;
            gapEnd_ += count;
        }
    }

    // A new block of at least `count` slots, the elements in order at its front. It grows by an
    // eighth, not by doubling: a large table gains few rows at a time, and the slack is memory
    // that every row pays for.
    void grow(size_t count) {
        const size_t length = size();
        const size_t capacity =
            std::max({count, storage_.size() + storage_.size() / 8, size_t{16}});
        std::vector<T> bigger(capacity);
        const std::span<T> all = contiguous();
        std::move(all.begin(), all.end(), bigger.begin());
        storage_ = std::move(bigger);
        gapStart_ = length;
        gapEnd_ = capacity;
    }

    std::vector<T> storage_;
    size_t gapStart_ = 0;
    size_t gapEnd_ = 0;
};
