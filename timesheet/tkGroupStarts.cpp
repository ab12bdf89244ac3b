#include "timesheet/tkGroupStarts.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

uint32_t tkGroupStarts::at(size_t i) const {
    if (i >= values_.size()) {
        throw std::out_of_range("tkGroupStarts::at");
    }
    return (*this)[i];
}

void tkGroupStarts::assign(std::vector<uint32_t> values) {
    values_ = std::move(values);
    from_ = 0;
    delta_ = 0;
    ordered_ = std::is_sorted(values_.begin(), values_.end());
}

void tkGroupStarts::addFrom(size_t from, uint32_t delta) {
    if (from >= values_.size()) {
        return;
    }
    if (delta_ == 0) {
        from_ = from;
    } else if (from > from_) {
        // The values in between keep only what was pending for them.
        for (size_t i = from_; i < from; ++i) {
            values_[i] += delta_;
        }
        from_ = from;
    } else {
        // The values in between get the new move now; those behind get it with the rest.
        for (size_t i = from; i < from_; ++i) {
            values_[i] += delta;
        }
    }
    delta_ += delta;
    // Within the moved values the order stays unless some of them wrapped around; otherwise
    // only the step into them can change.
    ordered_ = ordered_ && inOrderAround(from) && (*this)[from] <= (*this)[values_.size() - 1];
}

void tkGroupStarts::addAt(size_t i, uint32_t delta) {
    values_.at(i) += delta;
    ordered_ = ordered_ && inOrderAround(i) && inOrderAround(i + 1);
}

void tkGroupStarts::insert(size_t i, uint32_t value) {
    // Before the pending part the value goes in as it is and the part moves back by one;
    // inside it, the pending move is taken off first.
    if (i < from_) {
        ++from_;
    } else {
        value -= delta_;
    }
    values_.insert(values_.begin() + static_cast<std::ptrdiff_t>(i), value);
    ordered_ = ordered_ && inOrderAround(i) && inOrderAround(i + 1);
}

void tkGroupStarts::erase(size_t i) {
    values_.erase(values_.begin() + static_cast<std::ptrdiff_t>(i));
    if (i < from_) {
        --from_;
    }
    // Neighbours of a value in order are in order with each other.
}

size_t tkGroupStarts::groupHolding(uint32_t r) const {
    const size_t count = values_.size();
    size_t next = 1;
    if (ordered_) {
        // The first index from 1 on whose value lies above r.
        size_t length = count > 1 ? count - 1 : 0;
        while (length > 0) {
            const size_t half = length / 2;
            if ((*this)[next + half] <= r) {
                next += half + 1;
                length -= half + 1;
            } else {
                length = half;
            }
        }
    } else {
        while (next < count && (*this)[next] <= r) {
            ++next;
        }
    }
    return next - 1;
}

const std::vector<uint32_t>& tkGroupStarts::values() const {
    settle();
    return values_;
}

bool tkGroupStarts::inOrderAround(size_t i) const {
    // Whether the value at i is not below the one before it.
    return i == 0 || i >= values_.size() || (*this)[i - 1] <= (*this)[i];
}

void tkGroupStarts::settle() const {
    if (delta_ != 0) {
        for (size_t i = from_; i < values_.size(); ++i) {
            values_[i] += delta_;
        }
        delta_ = 0;
    }
}
