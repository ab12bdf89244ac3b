#include "timesheet/tkTimeSheet.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "foundation/tkException.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "records/tkRecordText.h"
#include "timesheet/tkCompoundEdit.h"
#include "timesheet/tkCompoundInsert.h"
#include "timesheet/tkDeleteCommand.h"
#include "timesheet/tkInsertCommand.h"
#include "timesheet/tkSelectionChangeCommand.h"
#include "timesheet/tkSetCellCommand.h"
#include "timesheet/tkSortCommand.h"
#include "timesheet/tkUndoManager.h"

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
    SortKeys(const tkRecordRows& records, const std::string& key)
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
    void rankTexts(const tkRecordRows& records, const std::string& key) {
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
tkRecordRows permuted(tkRecordRows& records, const std::vector<uint32_t>& order) {
    tkRecordRows result;
    result.reserve(records.size());
    for (uint32_t from : order) {
        result.push_back(std::move(records[from]));
    }
    return result;
}

// Splits at every separator; the pieces between them may be empty, and a text that ends in
// the separator has an empty last piece.
std::vector<std::string_view> splitAt(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    size_t start = 0;
    while (true) {
        size_t end = text.find(separator, start);
        if (end == std::string_view::npos) {
            pieces.push_back(text.substr(start));
            return pieces;
        }
        pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
}

void appendTabLine(std::string& out, const tkRecord& record) {
    // The same bytes as toTabLine(record, false), appended in place: the file is rewritten
    // at every change, and a temporary string per row is the larger part of the cost.
    out += record.date()->toString();
    out += '\t';
    out += record.duration()->toString();
    out += '\t';
    out += record.employee()->toString();
    out += '\t';
    out += record.jobNumber()->toString();
    out += '\t';
    out += record.feeCode()->toString();
    out += '\t';
    out += record.description()->toString();
    out += '\n';
}

// The group that holds row r: the first g whose next start lies above r. Searched in order,
// not by halving: after an undone sort the vector is stale (restoreRows doesn't rebuild it),
// and the updates can then leave it out of order, where a binary search finds another group.
size_t groupHolding(const std::vector<uint32_t>& groupStarts, uint32_t r) {
    const auto next = std::find_if(groupStarts.begin() + 1, groupStarts.end(),
                                   [r](uint32_t start) { return start > r; });
    return static_cast<size_t>(next - groupStarts.begin()) - 1;
}

}  // namespace

// ---- Construction ----

tkTimeSheet& tkTimeSheet::instance() {
    static tkTimeSheet sheet;
    return sheet;
}

tkTimeSheet::tkTimeSheet()
    : becameDirtyNote_(kTimeSheetBecameDirty, this, 0),
      selectionChangedNote_(kTimeSheetSelectionChanged, this, 0),
      sortByChangedNote_(kTimeSheetSortByChanged, this, 0) {
    // The center must outlive the application's sheet, whose destructor takes back its
    // registration: touching it first makes it finish construction first, and so be
    // destroyed last.
    tkNotificationCenter& center = tkNotificationCenter::instance();
    undoManager_ = std::make_unique<tkUndoManager>();
    setSortKey(kFieldDate);
    rebuildGroups();
    dirty_ = false;
    selection_ = makeRowSelection({});
    center.addObserver(
        this, [this](const tkNotification& note) { recordWasEdited(note); }, kRecordWasEdited,
        nullptr);
}

tkTimeSheet::~tkTimeSheet() {
    tkNotificationCenter::instance().removeObserver(this, kRecordWasEdited, nullptr);
}

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

// ---- Reading ----

std::shared_ptr<tkRecord> tkTimeSheet::recordAtRow(uint32_t row) const {
    return rows_.at(row);
}

tkStringConvertible* tkTimeSheet::itemAtRow(uint32_t row, const std::string& fieldName) const {
    return rows_.at(row)->getField(fieldName);
}

tkStringConvertible* tkTimeSheet::itemAtRow(uint32_t row, const std::string& fieldName,
                                            bool throughSelection) const {
    if (throughSelection) {
        if (row >= selection_->size()) {
            std::cout << "rowIndex for selection beyond selection range: " << row << "\n";
            std::cout.flush();
            throw std::out_of_range("rowIndex for selection beyond selection range");
        }
        row = (*selection_)[row];
    }
    return itemAtRow(row, fieldName);
}

std::unique_ptr<tkDuration> tkTimeSheet::totalDuration(bool selectionOnly) const {
    if (selectionOnly) {
        // 32 bits that wrap silently, as every total does.
        uint32_t seconds = 0;
        for (uint32_t row : *selection_) {
            seconds += static_cast<uint32_t>(rows_.at(row)->duration()->totalSeconds());
        }
        return std::make_unique<tkDuration>(static_cast<int32_t>(seconds));
    }
    if (rows_.empty()) {
        return std::make_unique<tkDuration>(static_cast<int32_t>(0));
    }
    return totalDurationInRowRange(0, static_cast<int32_t>(rowCount()) - 1);
}

std::unique_ptr<tkDuration> tkTimeSheet::totalDurationInRowRange(int32_t fromIndex,
                                                                 int32_t toIndex) const {
    const bool valid = fromIndex >= 0 && toIndex >= fromIndex &&
                       static_cast<int64_t>(toIndex) < static_cast<int64_t>(rows_.size());
    if (!valid) {
        std::cout << "Error: totalDurationInRowRange called with invalid row range: fromIndex: "
                  << fromIndex << " toIndex: " << toIndex << "\n";
        std::cout.flush();
        throw tkException("Invalid argument",
                          "totalDurationInRowRange called with invalid row range");
    }
    uint32_t seconds = 0;
    for (int32_t row = fromIndex; row <= toIndex; ++row) {
        seconds +=
            static_cast<uint32_t>(rows_[static_cast<size_t>(row)]->duration()->totalSeconds());
    }
    return std::make_unique<tkDuration>(static_cast<int32_t>(seconds));
}

std::string tkTimeSheet::tabbedText() const {
    std::string text;
    // A row line is rarely longer than this; the string grows geometrically when it is.
    text.reserve(rows_.size() * 64);
    for (const auto& record : rows_) {
        appendTabLine(text, *record);
    }
    return text;
}

std::string tkTimeSheet::selectedRowsAsTabbedText(bool useDisplayDate) const {
    std::string text;
    for (uint32_t row : *selection_) {
        text += toTabLine(*rows_.at(row), useDisplayDate);
        text += '\n';
    }
    return text;
}

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
    groupStarts_.clear();
    groupStarts_.push_back(0);
    if (rows_.empty()) {
        groupStarts_.push_back(0);
        return;
    }
    if (sortKind_ != SortKind::kNone) {
        const tkRecord* rep = rows_[0].get();
        for (size_t i = 1; i < rows_.size(); ++i) {
            if (less(*rep, *rows_[i])) {
                groupStarts_.push_back(static_cast<uint32_t>(i));
                rep = rows_[i].get();
            }
        }
    }
    groupStarts_.push_back(rowCount());
}

void tkTimeSheet::updateGroupsAfterInsert(uint32_t r) {
    // Unsorted, every row is in the one group: only the closing value moves. ("off" would
    // make less() true for every pair and split each appended row into a group of its own.)
    if (sortKind_ == SortKind::kNone) {
        groupStarts_.back() += 1;
        return;
    }
    if (static_cast<size_t>(r) + 1 == rows_.size()) {
        groupStarts_.back() += 1;
        if (r == 0) {
            return;
        }
        if (less(*rows_[r - 1], *rows_[r])) {
            groupStarts_.insert(groupStarts_.end() - 1, r);
        }
        return;
    }
    // g: the group that held the old row r, now the new row's successor.
    const size_t g = groupHolding(groupStarts_, r);
    for (size_t i = g + 1; i < groupStarts_.size(); ++i) {
        groupStarts_[i] += 1;
    }
    if (!less(*rows_[r], *rows_[r + 1])) {
        return;  // joins its successor's group
    }
    if (r > 0 && !less(*rows_[r - 1], *rows_[r])) {
        groupStarts_[g] += 1;  // joins its predecessor's group
        return;
    }
    // Deliberately left as it is: this also leaves groupStarts_[g + 1] at r, so the new row's
    // group reads as empty and the next one as a row longer until the next rebuild.
    groupStarts_.insert(groupStarts_.begin() + static_cast<std::ptrdiff_t>(g), r);
}

void tkTimeSheet::updateGroupsAfterRemove(uint32_t r) {
    const size_t g = groupHolding(groupStarts_, r);
    for (size_t i = g + 1; i < groupStarts_.size(); ++i) {
        groupStarts_[i] -= 1;
    }
    if (g + 1 < groupStarts_.size() && groupStarts_[g + 1] == groupStarts_[g] && !rows_.empty()) {
        groupStarts_.erase(groupStarts_.begin() + static_cast<std::ptrdiff_t>(g));
    }
}

// ---- User operations ----

uint32_t tkTimeSheet::addEntry(std::shared_ptr<tkRecord> record) {
    auto command = std::make_unique<tkInsertCommand>(*this, std::move(record));
    const uint32_t row = command->row();
    undoManager_->addEdit(std::move(command));
    return row;
}

void tkTimeSheet::addEntryAtRow(std::shared_ptr<tkRecord> record, uint32_t row) {
    undoManager_->addEdit(std::make_unique<tkInsertCommand>(*this, std::move(record), row));
}

void tkTimeSheet::deleteRow(uint32_t row) {
    undoManager_->addEdit(std::make_unique<tkDeleteCommand>(*this, row));
}

void tkTimeSheet::deleteRowInGroup(uint32_t g, uint32_t k) {
    deleteRow(rowOfGroupEntry(g, k));
}

void tkTimeSheet::deleteRows(const std::set<uint32_t>& rowSet) {
    // Checked before anything happens: a row out of range half-way through would leave rows
    // removed with no undo step to bring them back.
    if (!rowSet.empty() && *rowSet.rbegin() >= rowCount()) {
        throw std::out_of_range("deleteRows: row out of range");
    }
    auto compound = std::make_unique<tkCompoundEdit>(this);
    compound->setPresentationName(rowSet.size() >= 2 ? "Delete Entries" : "Delete Entry");
    compound->addEdit(std::make_unique<tkSelectionChangeCommand>(*this, 0, nullptr));
    uint32_t removed = 0;
    for (uint32_t row : rowSet) {
        // Every earlier removal has moved the later rows up by one.
        compound->addEdit(std::make_unique<tkDeleteCommand>(*this, row - removed));
        ++removed;
    }
    // An empty set (the delete key with nothing selected) has no row to select next to: the
    // step ends with the selection cleared, which it already was, and no row changed.
    if (!rows_.empty() && !rowSet.empty()) {
        const uint32_t first = *rowSet.begin();
        const uint32_t next = first > 0 ? first - 1 : 0;
        compound->addEdit(std::make_unique<tkSelectionChangeCommand>(*this, 1, &next));
    }
    compound->end();
    undoManager_->addEdit(std::move(compound));
}

void tkTimeSheet::deleteSelectedRows() {
    const std::set<uint32_t> rowSet(selection_->begin(), selection_->end());
    deleteRows(rowSet);
}

void tkTimeSheet::deleteAllRows() {
    if (rows_.empty()) {
        return;
    }
    std::set<uint32_t> rowSet;
    for (uint32_t row = 0; row < rowCount(); ++row) {
        rowSet.insert(rowSet.end(), row);
    }
    deleteRows(rowSet);
}

void tkTimeSheet::setCell(uint32_t row, const std::string& fieldName, const std::string& text) {
    tkStringConvertible* field = itemAtRow(row, fieldName);
    if (field == nullptr) {
        return;  // no such column
    }
    // A date parser may throw here, before anything changed.
    std::shared_ptr<tkStringConvertible> item = field->create(text);
    // The known lists may refuse a new billing code; then there is nothing to set.
    if (!item) {
        return;
    }
    // Upper-cased text decides: a change of case alone, or a duration that renders as the
    // text already there, is no change at all.
    if (item->compare(*field) == 0) {
        return;
    }
    auto cell = std::make_unique<tkSetCellCommand>(*this, row, fieldName, text);
    if (fieldName != sortBy_) {
        undoManager_->addEdit(std::move(cell));
        return;
    }
    // The edit may move the row, so it is one step with the re-sort: undo puts the old row
    // order back first, then the old text into the same row number.
    auto compound = std::make_unique<tkCompoundEdit>(this);
    const std::string name = cell->getPresentationName();
    compound->addEdit(std::move(cell));
    compound->addEdit(std::make_unique<tkSortCommand>(*this, fieldName));
    compound->end();
    compound->setPresentationName(name);
    undoManager_->addEdit(std::move(compound));
}

void tkTimeSheet::setSortBy(const std::string& key) {
    undoManager_->addEdit(std::make_unique<tkSortCommand>(*this, key));
}

std::vector<uint32_t> tkTimeSheet::pasteText(const std::string& text) {
    std::unique_ptr<tkCompoundInsert> compound = addRecordsFromText(text, true);
    std::vector<uint32_t> rows = compound->insertedRows();
    undoManager_->addEdit(std::move(compound));
    return rows;
}

std::vector<uint32_t> tkTimeSheet::addTabbedText(const std::string& text) {
    std::unique_ptr<tkCompoundInsert> compound = addRecordsFromText(text, false);
    std::vector<uint32_t> rows = compound->insertedRows();
    undoManager_->addEdit(std::move(compound));
    return rows;
}

// ---- Readers ----

void tkTimeSheet::readTabbedText(const std::string& text) {
    // The load is deliberately no undo step, so it keeps no commands: the same changes and
    // posts as addRecordsFromText, without the memory of a step nobody can take back.
    insertWithoutUndo(parseLines(text, false), true);
}

std::unique_ptr<tkCompoundInsert> tkTimeSheet::addRecordsFromText(const std::string& text,
                                                                  bool displayDates) {
    return addRecords(parseLines(text, displayDates));
}

tkRecordRows tkTimeSheet::parseLines(const std::string& text, bool displayDates) const {
    std::vector<std::string_view> lines = splitAt(text, '\n');
    if (lines.size() == 1) {
        // A file with carriage returns as line ends, or one line ending in one.
        std::vector<std::string_view> byReturns = splitAt(text, '\r');
        if (byReturns.size() >= 2) {
            lines = std::move(byReturns);
        }
    }
    // Every line is parsed before the first row goes in, so a bad line adds nothing.
    tkRecordRows records;
    records.reserve(lines.size());
    for (std::string_view line : lines) {
        if (line.empty()) {
            continue;
        }
        records.push_back(sharedFromTabLine(line, displayDates));
    }
    sortRecords(records);
    return records;
}

void tkTimeSheet::sortRecords(tkRecordRows& records) const {
    // Re-sorting the list stably after each append leaves every record behind its equals in
    // reading order; one stable sort at the end gives exactly that order without the
    // quadratic work. Unsorted, the list stays in reading order.
    if (sortKind_ != SortKind::kNone) {
        records = permuted(records, SortKeys(records, sortBy_).stableOrder());
    }
}

std::unique_ptr<tkCompoundInsert> tkTimeSheet::addRecords(const tkRecordRows& records) {
    reserveRows(records.size());
    auto compound = std::make_unique<tkCompoundInsert>(*this);
    std::vector<uint32_t> rows;
    rows.reserve(records.size());
    // Each new entry lands behind its equals and behind every entry before it in the sorted
    // list, so no later insertion shifts a row already noted.
    for (const auto& record : records) {
        auto command = std::make_unique<tkInsertCommand>(*this, record);
        rows.push_back(command->row());
        compound->addEdit(std::move(command));
    }
    compound->setInsertedRows(rows);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    compound->end();
    return compound;
}

void tkTimeSheet::insertWithoutUndo(const tkRecordRows& records, bool inSheetOrder) {
    // Step for step what addRecords does through its commands, post for post.
    reserveRows(records.size());
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.postNotification(tkNotification(kTimeSheetBeganCompoundEdit, this, 0));
    setSelection(makeRowSelection({}));
    std::vector<uint32_t> rows;
    rows.reserve(records.size());
    // Into an empty sheet a list in the sheet's order goes row after row to the end: no record
    // sorts before one ahead of it, so the search would answer the end every time, at a cache
    // miss per step on a big load. That holds only while the rows are exactly the ones this
    // load put there under the same key, so any other change made meanwhile (by an observer
    // of a post) falls back to the search.
    const bool startedEmpty = inSheetOrder && rows_.empty();
    const std::string key = sortBy_;
    const tkRecord* previous = nullptr;
    // Each row's selection is posted on its own, as the commands would set it. Those one-row
    // vectors are reused instead of allocated per row, but only once nobody else holds one,
    // and two take turns, so every post still hands out a fresh selection that is never
    // edited afterwards while anyone can see it.
    std::array<std::shared_ptr<std::vector<uint32_t>>, 2> oneRowSelections;
    size_t turn = 0;
    for (const auto& record : records) {
        if (!record) {
            throw std::invalid_argument("insertRecord: null record");
        }
        const bool appendsInOrder = startedEmpty && rows_.size() == rows.size() && sortBy_ == key &&
                                    (rows_.empty() || rows_.back().get() == previous);
        const uint32_t row =
            appendsInOrder ? insertRecordAt(record, rowCount()) : insertRecord(record);
        previous = record.get();
        rows.push_back(row);
        std::shared_ptr<std::vector<uint32_t>>& oneRow = oneRowSelections[turn];
        turn ^= 1;
        if (oneRow && oneRow.use_count() == 1) {
            oneRow->front() = row;
        } else {
            oneRow = std::make_shared<std::vector<uint32_t>>(1, row);
        }
        setSelection(oneRow);
    }
    setSelection(makeRowSelection(std::move(rows)));
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    center.postNotification(tkNotification(kTimeSheetEndedCompoundEdit, this, 0));
}

void tkTimeSheet::reserveRows(size_t more) {
    // A load of years of entries would otherwise grow the row vector by doubling, and hold
    // the old and the new block at once.
    rows_.reserve(rows_.size() + more);
    observedRecords_.reserve(observedRecords_.size() + more);
}

void tkTimeSheet::addRecordsFromTags(const tkTagNode& node) {
    tkRecordRows records;
    for (int32_t i = 0; i < node.childCount(); ++i) {
        const tkTagNode* child = node.childAt(i);
        if (child->name() == kRecordElement) {
            records.push_back(recordFromTag(*child));
        }
    }
    // Nothing goes on the stack, so nothing needs keeping; the list stays unsorted.
    insertWithoutUndo(records, false);
}

// ---- Raw operations ----

uint32_t tkTimeSheet::insertRecord(std::shared_ptr<tkRecord> record) {
    if (!record) {
        throw std::invalid_argument("insertRecord: null record");
    }
    const uint32_t row = insertionRow(*record);
    return insertRecordAt(std::move(record), row);
}

uint32_t tkTimeSheet::insertRecordAt(std::shared_ptr<tkRecord> record, uint32_t row) {
    rows_.insert(rows_.begin() + row, record);
    updateGroupsAfterInsert(row);
    ObservedRecord& observed = observedRecords_[record.get()];
    observed.record = std::move(record);
    ++observed.times;
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    return row;
}

void tkTimeSheet::insertRecordAtRow(std::shared_ptr<tkRecord> record, uint32_t row) {
    if (!record) {
        throw std::invalid_argument("insertRecordAtRow: null record");
    }
    if (row > rows_.size()) {
        throw std::out_of_range("insertRecordAtRow: row out of range");
    }
    rows_.insert(rows_.begin() + row, std::move(record));
    updateGroupsAfterInsert(row);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
}

std::shared_ptr<tkRecord> tkTimeSheet::removeRecordAtRow(uint32_t row) {
    // The very record goes to the caller, not a copy. A sort's snapshots hold the records
    // themselves, and a cell edit changes a record in place; had a deletion's undo put back a
    // copy, a later undo of the sort would bring back the original, without the edits made
    // to the copy, and undoing everything would not give back the rows.
    std::shared_ptr<tkRecord> record = rows_.at(row);
    rows_.erase(rows_.begin() + row);
    updateGroupsAfterRemove(row);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    // The record stays observed, on purpose: it may come back through undo, and is then still
    // the sheet's. observedRecords_ keeps it alive, so no other object can turn up at its
    // address and be taken for it.
    return record;
}

std::shared_ptr<tkStringConvertible> tkTimeSheet::setItem(uint32_t row,
                                                          const std::string& fieldName,
                                                          const std::string& text) {
    std::shared_ptr<tkStringConvertible> old = rows_.at(row)->setField(fieldName, text);
    dirty_ = true;
    postSheetNote(becameDirtyNote_);
    return old;
}

void tkTimeSheet::setSelection(tkRowSelection selection) {
    selection_ = selection ? std::move(selection) : makeRowSelection({});
    postSheetNote(selectionChangedNote_);
}

void tkTimeSheet::changeSelection(uint32_t count, const uint32_t* rowArray) {
    // Built and dropped at once: the selection is set and posted, the stack never sees it.
    tkSelectionChangeCommand command(*this, count, rowArray);
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
    const SortKeys keys(rows_, sortBy_);
    const std::vector<uint32_t> order = keys.stableOrder();
    std::vector<uint32_t> newRowOf(order.size());
    for (size_t to = 0; to < order.size(); ++to) {
        newRowOf[order[to]] = static_cast<uint32_t>(to);
    }
    rows_ = permuted(rows_, order);
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
    groupStarts_ = std::move(groups);
}

void tkTimeSheet::restoreRows(const tkRecordRows& rows) {
    rows_ = rows;
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

void tkTimeSheet::setDirty(bool flag) {
    dirty_ = flag;
    // Posts even when it was dirty already: the last save at quit relies on that.
    if (flag) {
        postSheetNote(becameDirtyNote_);
    }
}

void tkTimeSheet::dump(std::string& text) const {
    text = tabbedText();
    std::cout << "Time Sheet:\n" << text << "\n";
    std::cout.flush();
}

void tkTimeSheet::recordWasEdited(const tkNotification& note) {
    const auto observed = observedRecords_.find(note.sender());
    if (observed == observedRecords_.end()) {
        return;
    }
    // Once for every time the record was taken in, as that many registrations would.
    for (uint32_t i = observed->second.times; i > 0; --i) {
        dirty_ = true;
        postSheetNote(becameDirtyNote_);
    }
}

void tkTimeSheet::postSheetNote(const tkNotification& note) {
    tkNotificationCenter::instance().postNotification(note);
}
