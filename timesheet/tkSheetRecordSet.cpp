#include "timesheet/tkSheetRecordSet.h"

#include "records/tkRecord.h"

static_assert(alignof(tkRecord) >= 8, "the low three bits of a record's address must be free");

namespace {

// Linear probing stays short up to this load, and the table is at least half full after it
// grows, so an entry costs ten to twenty bytes.
constexpr size_t kMaxLoadPercent = 80;

// Fibonacci hashing: the top `bits` bits of the product.
size_t hashOf(const void* record, unsigned bits) {
    const uint64_t product =
        (static_cast<uint64_t>(reinterpret_cast<uintptr_t>(record)) >> 3) * 0x9E3779B97F4A7C15ull;
    return bits == 0 ? 0 : static_cast<size_t>(product >> (64 - bits));
}

}  // namespace

size_t tkSheetRecordSet::slotOf(const void* record) const {
    const size_t mask = slots_.size() - 1;
    const auto address = reinterpret_cast<uintptr_t>(record);
    for (size_t i = hashOf(record, bits_);; i = (i + 1) & mask) {
        if (slots_[i] == 0 || (slots_[i] & kAddressMask) == address) {
            return i;
        }
    }
}

void tkSheetRecordSet::add(const std::shared_ptr<tkRecord>& record, bool takenIn) {
    if ((count_ + 1) * 100 > slots_.size() * kMaxLoadPercent) {
        grow(slots_.empty() ? 64 : slots_.size() * 2);
    }
    uintptr_t& slot = slots_[slotOf(record.get())];
    if (slot == 0) {
        slot = reinterpret_cast<uintptr_t>(record.get());
        ++count_;
    }
    if (!takenIn) {
        return;
    }
    const uint32_t times = static_cast<uint32_t>((slot & kTimesMask) >> kTimesShift);
    if (times < kManyTimes - 1) {
        slot += uintptr_t{1} << kTimesShift;
    } else if (times == kManyTimes - 1) {
        slot |= kTimesMask;
        manyTimes_[record.get()] = kManyTimes;
    } else {
        ++manyTimes_[record.get()];
    }
}

std::optional<uint32_t> tkSheetRecordSet::timesTakenIn(const void* record) const {
    if (slots_.empty()) {
        return std::nullopt;
    }
    const uintptr_t slot = slots_[slotOf(record)];
    if (slot == 0) {
        return std::nullopt;
    }
    const uint32_t times = static_cast<uint32_t>((slot & kTimesMask) >> kTimesShift);
    return times == kManyTimes ? manyTimes_.at(record) : times;
}

void tkSheetRecordSet::retain(const std::shared_ptr<tkRecord>& record) {
    if (slots_.empty()) {
        return;
    }
    uintptr_t& slot = slots_[slotOf(record.get())];
    if (slot != 0 && (slot & kRetained) == 0) {
        slot |= kRetained;
        retained_.push_back(record);
    }
}

void tkSheetRecordSet::reserve(size_t count) {
    size_t capacity = slots_.empty() ? 64 : slots_.size();
    while (count * 100 > capacity * kMaxLoadPercent) {
        capacity *= 2;
    }
    if (capacity > slots_.size()) {
        grow(capacity);
    }
}

void tkSheetRecordSet::grow(size_t capacity) {
    std::vector<uintptr_t> old = std::move(slots_);
    slots_.assign(capacity, 0);
    bits_ = 0;
    while ((size_t{1} << bits_) < capacity) {
        ++bits_;
    }
    for (const uintptr_t slot : old) {
        if (slot != 0) {
            slots_[slotOf(reinterpret_cast<const void*>(slot & kAddressMask))] = slot;
        }
    }
}
