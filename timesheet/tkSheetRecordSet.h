#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

class tkRecord;

// The records that ever entered a time sheet's rows, each with the number of times
// insertRecord took it in. The sheet asks for a record at every "Record was edited." post,
// so a lookup is a few probes of one table, and an entry is one word: with a record per row,
// this is part of what every row costs.
//
// Entries are never removed. A record in the rows is held by the rows; one that left them is
// held here (retain), so that no other object can turn up at its address while it is listed.
class tkSheetRecordSet {
  public:
    // The record entered the rows; `takenIn` when insertRecord took it in.
    void add(const std::shared_ptr<tkRecord>& record, bool takenIn);
    // How many times insertRecord took the record in, or nothing when it never entered.
    std::optional<uint32_t> timesTakenIn(const void* record) const;
    // The record left the rows (it may stay listed forever).
    void retain(const std::shared_ptr<tkRecord>& record);
    // Room for `count` entries in all.
    void reserve(size_t count);
    bool empty() const { return count_ == 0; }
    size_t size() const { return count_; }

  private:
    // A slot holds a record's address with its low bits, free since records are aligned to
    // eight bytes, put to use: bit 0 set once retained, bits 1 and 2 the times taken in, where
    // 3 means "3 or more, see manyTimes_". An empty slot is 0.
    static constexpr uintptr_t kRetained = 1;
    static constexpr uintptr_t kTimesShift = 1;
    static constexpr uintptr_t kTimesMask = 3 << kTimesShift;
    static constexpr uintptr_t kAddressMask = ~uintptr_t{7};
    static constexpr uint32_t kManyTimes = 3;

    size_t slotOf(const void* record) const;
    void grow(size_t capacity);

    // A power of two, 2 to the `bits_`.
    std::vector<uintptr_t> slots_;
    unsigned bits_ = 0;
    size_t count_ = 0;
    std::vector<std::shared_ptr<tkRecord>> retained_;
    std::unordered_map<const void*, uint32_t> manyTimes_;
};
