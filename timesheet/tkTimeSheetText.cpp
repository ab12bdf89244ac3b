// The sheet's text forms: the file and clipboard text, and the readers that add rows from a
// file text, a paste or tagged text.
#include <algorithm>
#include <array>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "records/tkRecordText.h"
#include "timesheet/tkCompoundInsert.h"
#include "timesheet/tkInsertCommand.h"
#include "timesheet/tkSheetLines.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

// Splicing is always worth it for a small text.
constexpr size_t kSpliceSlack = 1 << 16;

void appendTabLine(std::string& out, const tkRecord& record) {
    // The same bytes as toTabLine(record, false) and a line feed. The file text is built from
    // these, line by line as rows come in and all at once after a re-sort, so the line is put
    // together in a buffer and appended once, rather than piece by piece.
    const std::string& employee = record.employee()->text();
    const std::string& jobNumber = record.jobNumber()->text();
    const std::string& feeCode = record.feeCode()->text();
    const std::string& description = record.description()->text();
    char line[512];
    const size_t longest = tkDate::kMaxTextLength + tkDuration::kMaxTextLength + employee.size() +
                           jobNumber.size() + feeCode.size() + description.size() + 6;
    if (longest > sizeof line) {
        // Only text set on the trusted path, past every limit, gets here.
        out += toTabLine(record, false);
        out += '\n';
        return;
    }
    auto copy = [](char* to, const std::string& text) {
        return std::copy(text.begin(), text.end(), to);
    };
    char* end = record.date()->writeText(line);
    *end++ = '\t';
    end = record.duration()->writeText(end);
    *end++ = '\t';
    end = copy(end, employee);
    *end++ = '\t';
    end = copy(end, jobNumber);
    *end++ = '\t';
    end = copy(end, feeCode);
    *end++ = '\t';
    end = copy(end, description);
    *end++ = '\n';
    out.append(line, static_cast<size_t>(end - line));
}

// Where line `row` starts in a text of `lines` lines, each ended by a line feed, counted from
// the nearer end. The bytes looked at are added to `scanned`.
size_t lineStart(std::string_view text, size_t lines, size_t row, size_t& scanned) {
    if (row == 0 || row >= lines) {
        return row == 0 ? 0 : text.size();
    }
    // Line feeds are counted a block at a time, which the compiler does many bytes per step,
    // and only the block with the one sought is walked byte by byte.
    constexpr size_t kBlock = 4096;
    auto feedsIn = [&text](size_t from, size_t length) {
        return static_cast<size_t>(
            std::count(text.begin() + static_cast<std::ptrdiff_t>(from),
                       text.begin() + static_cast<std::ptrdiff_t>(from + length), '\n'));
    };
    if (row <= lines / 2) {
        // Behind the row-th line feed from the front.
        size_t seen = 0;
        size_t at = 0;
        while (at < text.size()) {
            const size_t length = std::min(kBlock, text.size() - at);
            const size_t feeds = feedsIn(at, length);
            if (seen + feeds >= row) {
                break;
            }
            seen += feeds;
            at += length;
        }
        while (seen < row && at < text.size()) {
            seen += text[at++] == '\n' ? 1 : 0;
        }
        scanned += at;
        return at;
    }
    // Behind the (lines - row + 1)-th line feed from the back: the last one ends the last line.
    const size_t wanted = lines - row + 1;
    size_t seen = 0;
    size_t end = text.size();
    while (end > 0) {
        const size_t length = std::min(kBlock, end);
        const size_t feeds = feedsIn(end - length, length);
        if (seen + feeds >= wanted) {
            break;
        }
        seen += feeds;
        end -= length;
    }
    while (end > 0) {
        --end;
        if (text[end] == '\n' && ++seen == wanted) {
            scanned += text.size() - end;
            return end + 1;
        }
    }
    return 0;
}

}  // namespace

std::string tkTimeSheet::tabbedText() const {
    return fileText();
}

const std::string& tkTimeSheet::fileText() const {
    const uint64_t renames = tkKnownRecordItems::instance().renameCount();
    if (!fileTextValid_ || fileTextRenames_ != renames) {
        // Built in the block of the last one: a fresh block of this size would be paged in
        // again, which costs about as much as writing the text.
        fileText_.clear();
        rows_.forEach(
            [this](const std::shared_ptr<tkRecord>& record) { appendTabLine(fileText_, *record); });
        fileTextValid_ = true;
        fileTextRenames_ = renames;
    }
    spliceWork_ = 0;
    return fileText_;
}

void tkTimeSheet::dropFileText() const {
    fileTextValid_ = false;
}

void tkTimeSheet::spliceLineIn(uint32_t row) {
    if (!fileTextValid_) {
        return;
    }
    size_t work = 0;
    const size_t at = lineStart(fileText_, rows_.size() - 1, row, work);
    work += fileText_.size() - at;
    spliceWork_ += work;
    if (spliceWork_ > 2 * fileText_.size() + kSpliceSlack) {
        dropFileText();
        return;
    }
    std::string line;
    appendTabLine(line, *rows_[row]);
    fileText_.insert(at, line);
}

void tkTimeSheet::spliceLineOut(uint32_t row) {
    if (!fileTextValid_) {
        return;
    }
    size_t work = 0;
    const size_t at = lineStart(fileText_, rows_.size() + 1, row, work);
    work += fileText_.size() - at;
    spliceWork_ += work;
    if (spliceWork_ > 2 * fileText_.size() + kSpliceSlack) {
        dropFileText();
        return;
    }
    fileText_.erase(at, fileText_.find('\n', at) + 1 - at);
}

std::string tkTimeSheet::selectedRowsAsTabbedText(bool useDisplayDate) const {
    std::string text;
    for (uint32_t row : *selection_) {
        text += toTabLine(*rows_.at(row), useDisplayDate);
        text += '\n';
    }
    return text;
}

void tkTimeSheet::dump(std::string& text) const {
    text = tabbedText();
    std::cout << "Time Sheet:\n" << text << "\n";
    std::cout.flush();
}

std::vector<uint32_t> tkTimeSheet::pasteText(const std::string& text) {
    return addTextAsStep(text, true);
}

std::vector<uint32_t> tkTimeSheet::addTabbedText(const std::string& text) {
    return addTextAsStep(text, false);
}

std::vector<uint32_t> tkTimeSheet::addTextAsStep(const std::string& text, bool displayDates) {
    // From the first line read (its new codes join the known lists) to the step on the stack.
    BulkChange bulk(this);
    std::unique_ptr<tkCompoundInsert> compound = addRecordsFromText(text, displayDates);
    std::vector<uint32_t> rows = compound->insertedRows();
    undoManager_->addEdit(std::move(compound));
    bulk.end();
    return rows;
}

// ---- Readers ----

void tkTimeSheet::readTabbedText(const std::string& text) {
    // The load is deliberately no undo step, so it keeps no commands: the same changes and
    // posts as addRecordsFromText, without the memory of a step nobody can take back.
    BulkChange bulk(this);
    if (fileTextValid_) {
        // The rows' text comes out about as long as the file's; room for it at once.
        fileText_.reserve(fileText_.size() + text.size());
    }
    insertWithoutUndo(parseLines(text, false), true);
    bulk.end();
}

std::unique_ptr<tkCompoundInsert> tkTimeSheet::addRecordsFromText(const std::string& text,
                                                                  bool displayDates) {
    return addRecords(parseLines(text, displayDates));
}

tkRecordRows tkTimeSheet::parseLines(const std::string& text, bool displayDates) const {
    const char separator = sheetLineSeparator(text);
    const size_t pieces = static_cast<size_t>(std::count(text.begin(), text.end(), separator)) + 1;
    // Every line is parsed before the first row goes in, so a bad line adds nothing.
    tkRecordRows records;
    records.reserve(pieces);
    forEachPiece(text, separator, [&records, displayDates](std::string_view line) {
        if (!line.empty()) {
            records.push_back(sharedFromTabLine(line, displayDates));
        }
    });
    sortRecords(records);
    return records;
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
            appendsInOrder ? insertRecordAt(record, rowCount(), true) : insertRecord(record);
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
    knownRecords_.reserve(knownRecords_.size() + more);
}

void tkTimeSheet::addRecordsFromTags(const tkTagNode& node) {
    BulkChange bulk(this);
    tkRecordRows records;
    for (int32_t i = 0; i < node.childCount(); ++i) {
        const tkTagNode* child = node.childAt(i);
        if (child->name() == kRecordElement) {
            records.push_back(recordFromTag(*child));
        }
    }
    // Nothing goes on the stack, so nothing needs keeping; the list stays unsorted.
    insertWithoutUndo(records, false);
    bulk.end();
}
