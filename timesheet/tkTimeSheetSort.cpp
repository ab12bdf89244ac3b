// The sheet's order: sort keys, the re-sort of the whole table with the selection kept, and the
// place of one new record.
#include <algorithm>
#include <span>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"

namespace {

struct DateKey {
    int32_t year;
    int32_t month;
    int32_t day;
    bool operator<(const DateKey& other) const {
        if (year != other.year) {
            return year < other.year;
        }
        if (month != other.month) {
            return month < other.month;
        }
        return day < other.day;
    }
};

// The sort keys of a list of records under a field key, computed once per record.
//
// Each comparison of field text upper-cases both texts; doing that O(n log n) times, on
// records spread all over memory, is what makes a naive sort slow on years of entries. The
// keys order exactly as tkDate::compareDate and tkStringConvertible::compare do: signed
// year, month, day; upper-cased bytes as unsigned values with the shorter text first on a
// common prefix, which is std::string_view's own order.
//
// Text keys repeat a lot (a dozen employees over years of rows), so each distinct text is
// ranked once, and the rows are then ordered by rank with a counting sort, which keeps the
// order of equal keys as a stable sort does.
class SortKeys {
  public:
    SortKeys(std::span<const std::shared_ptr<tkRecord>> records, const std::string& key)
        : byDate_(key == kFieldDate), count_(records.size()) {
        if (byDate_) {
            dates_.reserve(count_);
            for (const auto& record : records) {
                const tkDate* date = record->date();
                dates_.push_back(DateKey{date->year(), date->month(), date->day()});
            }
        } else {
            rankTexts(records, key);
        }
    }

    // Whether the record at a sorts before the record at b.
    bool less(uint32_t a, uint32_t b) const {
        return byDate_ ? dates_[a] < dates_[b] : ranks_[a] < ranks_[b];
    }

    // The stable order, as a permutation: order[i] is the index of the record that goes to
    // position i.
    std::vector<uint32_t> stableOrder() const {
        std::vector<uint32_t> order(count_);
        if (byDate_) {
            for (size_t i = 0; i < count_; ++i) {
                order[i] = static_cast<uint32_t>(i);
            }
            // A file is saved in date order, and so it is read back: a stable sort of sorted
            // keys moves nothing, and checking for that is one pass instead of a merge sort.
            if (std::is_sorted(dates_.begin(), dates_.end())) {
                return order;
            }
            std::stable_sort(order.begin(), order.end(),
                             [this](uint32_t a, uint32_t b) { return less(a, b); });
            return order;
        }
        // Counting sort by rank: records of one rank go in reading order.
        std::vector<uint32_t> next(distinctCount_ + 1, 0);
        for (uint32_t rank : ranks_) {
            ++next[rank + 1];
        }
        for (size_t r = 1; r < next.size(); ++r) {
            next[r] += next[r - 1];
        }
        for (size_t i = 0; i < count_; ++i) {
            order[next[ranks_[i]]++] = static_cast<uint32_t>(i);
        }
        return order;
    }

  private:
    void rankTexts(std::span<const std::shared_ptr<tkRecord>> records, const std::string& key) {
        // All texts in one block, then the distinct ones found by hashing.
        std::string texts;
        std::vector<size_t> starts;
        starts.reserve(count_ + 1);
        for (const auto& record : records) {
            starts.push_back(texts.size());
            texts += record->getField(key)->toString();
        }
        starts.push_back(texts.size());
        // Upper-cased in one sweep, as toUpperCase() does text by text.
        for (char& c : texts) {
            if (c >= 'a' && c <= 'z') {
                c = static_cast<char>(c - 'a' + 'A');
            }
        }
        std::vector<std::string_view> distinct;
        std::vector<uint32_t> distinctOf(count_);
        // Not reserved for every row: codes have a few distinct texts, and a table sized for
        // the rows would cost more to set up than the sort itself.
        std::unordered_map<std::string_view, uint32_t> seen;
        for (size_t i = 0; i < count_; ++i) {
            const std::string_view text =
                std::string_view(texts).substr(starts[i], starts[i + 1] - starts[i]);
            const auto [it, added] = seen.try_emplace(text, static_cast<uint32_t>(distinct.size()));
            if (added) {
                distinct.push_back(text);
            }
            distinctOf[i] = it->second;
        }
        // The distinct texts are all different, so any sort ranks them.
        std::vector<uint32_t> byText(distinct.size());
        for (size_t d = 0; d < byText.size(); ++d) {
            byText[d] = static_cast<uint32_t>(d);
        }
        std::sort(byText.begin(), byText.end(),
                  [&distinct](uint32_t a, uint32_t b) { return distinct[a] < distinct[b]; });
        std::vector<uint32_t> rankOf(distinct.size());
        for (size_t r = 0; r < byText.size(); ++r) {
            rankOf[byText[r]] = static_cast<uint32_t>(r);
        }
        ranks_.resize(count_);
        for (size_t i = 0; i < count_; ++i) {
            ranks_[i] = rankOf[distinctOf[i]];
        }
        distinctCount_ = distinct.size();
    }

    bool byDate_;
    size_t count_;
    std::vector<DateKey> dates_;
    std::vector<uint32_t> ranks_;
    size_t distinctCount_ = 0;
};

// The records in the given order. They are moved, not copied: a copy of a shared pointer
// touches its count, which for a big sheet is a cache miss per row.
tkRecordRows permuted(std::span<std::shared_ptr<tkRecord>> records,
                      const std::vector<uint32_t>& order) {
    tkRecordRows result;
    result.reserve(records.size());
    for (uint32_t from : order) {
        result.push_back(std::move(records[from]));
    }
    return result;
}

}  // namespace

void tkTimeSheet::setSortKey(const std::string& key) {
    sortBy_ = key;
    // "off" and anything that is not a field name leave the rows where they are. Only the
    // seven keys are ever set by the application; treating a stray key like "off" keeps the
    // table usable instead of comparing fields that don't exist.
    if (key == kFieldDate) {
        sortKind_ = SortKind::kDate;
    } else if (isFieldName(key)) {
        sortKind_ = SortKind::kText;
    } else {
        sortKind_ = SortKind::kNone;
    }
}

void tkTimeSheet::sortRecords(tkRecordRows& records) const {
    // Re-sorting the list stably after each append leaves every record behind its equals in
    // reading order; one stable sort at the end gives exactly that order without the
    // quadratic work. Unsorted, the list stays in reading order.
    if (sortKind_ == SortKind::kNone) {
        return;
    }
    // A file is saved in the order of its key, and mostly read back under the same one: then
    // there is nothing to move, and a check costs neither time nor the memory of the keys.
    const bool inOrder = std::is_sorted(
        records.begin(), records.end(),
        [this](const std::shared_ptr<tkRecord>& a, const std::shared_ptr<tkRecord>& b) {
            return sortKind_ == SortKind::kDate ? a->date()->compareDate(*b->date()) < 0
                                                : less(*a, *b);
        });
    if (!inOrder) {
        records = permuted(records, SortKeys(records, sortBy_).stableOrder());
    }
}

std::string tkTimeSheet::applySortBy(const std::string& key) {
    std::string old = sortBy_;
    setSortKey(key);
    resort();
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    postSheetNote(sortByChangedNote_);
    return old;
}

std::string tkTimeSheet::restoreSortBy(const std::string& key) {
    std::string old = sortBy_;
    setSortKey(key);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    postSheetNote(sortByChangedNote_);
    return old;
}

void tkTimeSheet::resort() {
    // A stale selection fails here, before anything moved.
    for (uint32_t row : *selection_) {
        if (row >= rows_.size()) {
            throw std::out_of_range("resort: selected row out of range");
        }
    }
    if (sortKind_ == SortKind::kNone) {
        // Nothing moves; the selection stays as it stands, and is posted all the same.
        setSelection(selection_);
        rebuildGroups();
        return;
    }
    const std::span<std::shared_ptr<tkRecord>> rows = rows_.contiguous();
    const SortKeys keys(rows, sortBy_);
    const std::vector<uint32_t> order = keys.stableOrder();
    std::vector<uint32_t> newRowOf(order.size());
    for (size_t to = 0; to < order.size(); ++to) {
        newRowOf[order[to]] = static_cast<uint32_t>(to);
    }
    rows_.assign(permuted(rows, order));
    dropFileText();
    // The selected records stay selected at their new rows, in the old selection order.
    std::vector<uint32_t> selected;
    selected.reserve(selection_->size());
    for (uint32_t row : *selection_) {
        selected.push_back(newRowOf[row]);
    }
    // The groups as rebuildGroups() finds them, from the keys at hand: a run ends where its
    // first record sorts before the next row.
    std::vector<uint32_t> groups = {0};
    if (!order.empty()) {
        uint32_t rep = order[0];
        for (size_t i = 1; i < order.size(); ++i) {
            if (keys.less(rep, order[i])) {
                groups.push_back(static_cast<uint32_t>(i));
                rep = order[i];
            }
        }
    }
    groups.push_back(rowCount());
    setSelection(makeRowSelection(std::move(selected)));
    groupStarts_.assign(std::move(groups));
}

void tkTimeSheet::restoreRows(const tkRecordRows& rows) {
    rows_.assign(rows);
    dropFileText();
}

bool tkTimeSheet::less(const tkRecord& a, const tkRecord& b) const {
    switch (sortKind_) {
        case SortKind::kNone:
            // Deliberately true even for a record with itself; callers handle "off" first.
            return true;
        case SortKind::kDate:
            return a.date()->compareDate(*b.date()) < 0;
        case SortKind::kText:
            return a.getField(sortBy_)->compare(*b.getField(sortBy_)) < 0;
    }
    return true;
}

uint32_t tkTimeSheet::insertionRow(const tkRecord& record) const {
    uint32_t lo = 0;
    uint32_t hi = rowCount();
    if (sortKind_ == SortKind::kNone) {
        return hi;
    }
    if (hi == 0) {
        return 0;
    }
    // Equal keys move lo up, so the new record goes behind all of its equals.
    while (hi - lo > 1) {
        const uint32_t mid = (lo + hi) / 2;
        if (less(*rows_[mid], record)) {
            lo = mid;
        } else if (less(record, *rows_[mid])) {
            hi = mid;
        } else {
            lo = mid;
        }
    }
    if (hi == lo) {
        return hi;
    }
    return less(record, *rows_[lo]) ? lo : hi;
}
