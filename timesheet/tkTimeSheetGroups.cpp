// The sheet's groups: runs of rows with an equal sort key, kept for subtotals by group.
#include <utility>
#include <vector>

#include "records/tkRecord.h"
#include "timesheet/tkTimeSheet.h"

// ---- Groups ----

uint32_t tkTimeSheet::groupCount() const {
    if (groupStarts_[0] == groupStarts_[1]) {
        return 0;
    }
    return static_cast<uint32_t>(groupStarts_.size() - 1);
}

uint32_t tkTimeSheet::rowsInGroup(uint32_t g) const {
    return groupStarts_.at(static_cast<size_t>(g) + 1) - groupStarts_.at(g);
}

uint32_t tkTimeSheet::rowOfGroupEntry(uint32_t g, uint32_t k) const {
    return groupStarts_.at(g) + k;
}

std::shared_ptr<tkRecord> tkTimeSheet::recordInGroup(uint32_t g, uint32_t k) const {
    return rows_.at(rowOfGroupEntry(g, k));
}

std::unique_ptr<tkDuration> tkTimeSheet::totalDurationOfGroup(uint32_t g) const {
    return totalDurationInRowRange(
        static_cast<int32_t>(groupStarts_.at(g)),
        static_cast<int32_t>(groupStarts_.at(static_cast<size_t>(g) + 1)) - 1);
}

void tkTimeSheet::rebuildGroups() {
    std::vector<uint32_t> starts = {0};
    if (rows_.empty()) {
        starts.push_back(0);
        groupStarts_.assign(std::move(starts));
        return;
    }
    if (sortKind_ != SortKind::kNone) {
        const tkRecord* rep = rows_[0].get();
        for (size_t i = 1; i < rows_.size(); ++i) {
            if (less(*rep, *rows_[i])) {
                starts.push_back(static_cast<uint32_t>(i));
                rep = rows_[i].get();
            }
        }
    }
    starts.push_back(rowCount());
    groupStarts_.assign(std::move(starts));
}

void tkTimeSheet::updateGroupsAfterInsert(uint32_t r) {
    const size_t last = groupStarts_.size() - 1;
    // Unsorted, every row is in the one group: only the closing value moves. ("off" would
    // make less() true for every pair and split each appended row into a group of its own.)
    if (sortKind_ == SortKind::kNone) {
        groupStarts_.addAt(last, 1);
        return;
    }
    if (static_cast<size_t>(r) + 1 == rows_.size()) {
        groupStarts_.addAt(last, 1);
        if (r == 0) {
            return;
        }
        if (less(*rows_[r - 1], *rows_[r])) {
            groupStarts_.insert(last, r);
        }
        return;
    }
    // g: the group that held the old row r, now the new row's successor.
    const size_t g = groupStarts_.groupHolding(r);
    groupStarts_.addFrom(g + 1, 1);
    if (!less(*rows_[r], *rows_[r + 1])) {
        return;  // joins its successor's group
    }
    if (r > 0 && !less(*rows_[r - 1], *rows_[r])) {
        groupStarts_.addAt(g, 1);  // joins its predecessor's group
        return;
    }
    // Deliberately left as it is: this also leaves groupStarts_[g + 1] at r, so the new row's
    // group reads as empty and the next one as a row longer until the next rebuild.
    groupStarts_.insert(g, r);
}

void tkTimeSheet::updateGroupsAfterRemove(uint32_t r) {
    const size_t g = groupStarts_.groupHolding(r);
    // Minus one, as unsigned values wrap.
    groupStarts_.addFrom(g + 1, static_cast<uint32_t>(-1));
    if (g + 1 < groupStarts_.size() && groupStarts_[g + 1] == groupStarts_[g] && !rows_.empty()) {
        groupStarts_.erase(g);
    }
}
