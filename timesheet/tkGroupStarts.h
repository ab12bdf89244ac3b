#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// The time sheet's group vector: the first row of every run of rows with an equal sort key,
// then one closing value. The sheet's own rules decide what goes in; this class only makes
// the two operations behind every row change cheap.
//
// After a row is inserted or removed, every value behind its group moves by one. Done value
// by value that costs the number of groups per row, and a run of deletions or insertions
// touches the same values again and again. So the move is kept pending for the values from
// one index on, and a further move for the same index only adds to it; a move from another
// index settles only the values in between. A run at ascending or descending places then costs
// about one pass over the groups.
//
// While the values are in order (the normal case), the group of a row is found by halving.
// The sheet's rules can leave them out of order when the groups are stale, after the undo of
// a sort put back an old row order without regrouping; the search then walks from the front,
// as a search by halving would find another group.
class tkGroupStarts {
  public:
    size_t size() const { return values_.size(); }
    uint32_t operator[](size_t i) const { return values_[i] + (i >= from_ ? delta_ : 0); }
    // std::out_of_range for an index past the end.
    uint32_t at(size_t i) const;

    // Replaces every value.
    void assign(std::vector<uint32_t> values);
    // Adds delta (wrapping, as unsigned values do) to every value from index `from` on.
    void addFrom(size_t from, uint32_t delta);
    // Adds delta to the one value at i.
    void addAt(size_t i, uint32_t delta);
    void insert(size_t i, uint32_t value);
    void erase(size_t i);

    // The group that holds row r: the first g whose next start lies above r; size() - 1 when
    // no value does.
    size_t groupHolding(uint32_t r) const;

    // Every value, with the pending moves settled.
    const std::vector<uint32_t>& values() const;

  private:
    bool inOrderAround(size_t i) const;
    void settle() const;

    // Logical value i is values_[i], plus delta_ from index from_ on. Settling changes the
    // representation, not the values, so it is allowed where only reading was asked for.
    mutable std::vector<uint32_t> values_;
    mutable size_t from_ = 0;
    mutable uint32_t delta_ = 0;
    bool ordered_ = true;
};
