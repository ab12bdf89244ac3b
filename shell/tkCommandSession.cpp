#include "shell/tkCommandSession.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_set>
#include <utility>

#include "foundation/StringFormatException.h"
#include "foundation/tkException.h"
#include "foundation/tkFile.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkStrings.h"
#include "preferences/tkPreferences.h"
#include "records/tkDate.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"
#include "shell/tkAppState.h"
#include "shell/tkCommandFailure.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

tkCommandFailure unreadable(const tkException& error) {
    return tkCommandFailure(kExitFileError, error.message() + " The file is left as it is.");
}

// A billing code of up to 16 bytes as two numbers with its length: compared and hashed without
// a call, which matters at one lookup per code of every row of a large sheet.
struct PackedCode {
    uint64_t low = 0;
    uint64_t high = 0;
    bool operator==(const PackedCode& other) const {
        return low == other.low && high == other.high;
    }
};

struct PackedCodeHash {
    size_t operator()(const PackedCode& code) const {
        return static_cast<size_t>((code.low ^ (code.high << 1)) * 0x9E3779B97F4A7C15ULL);
    }
};

// False for a code too long to pack.
bool pack(std::string_view code, PackedCode& packed) {
    if (code.size() > 16) {
        return false;
    }
    // Byte by byte: a call to copy a few bytes costs more than the loop.
    packed = PackedCode{};
    for (size_t i = 0; i < code.size(); ++i) {
        uint64_t& word = i < 8 ? packed.low : packed.high;
        word |= static_cast<uint64_t>(static_cast<unsigned char>(code[i])) << (8 * (i % 8));
    }
    // The length keeps "A" apart from "A" followed by a zero byte.
    packed.high ^= static_cast<uint64_t>(code.size()) << 56;
    return true;
}

// Whether the billing codes of rows are all in the known lists already: a row with a new
// code would add it there when loaded, and the preferences file would change with it.
class KnownCodes {
  public:
    KnownCodes() {
        const std::array<const char*, 3> types = {kFieldEmployee, kFieldJobNumber, kFieldFeeCode};
        for (size_t i = 0; i < types.size(); ++i) {
            for (const std::string& code : tkKnownRecordItems::instance().codes(types[i])) {
                PackedCode packed;
                if (pack(code, packed)) {
                    sets_[i].insert(packed);
                }
            }
        }
    }

    bool holdCodesOf(const tkSheetRow& row) {
        for (size_t i = 0; i < sets_.size(); ++i) {
            PackedCode code;
            if (!pack(row.fields[i + 2], code)) {
                return false;
            }
            // A sheet uses few codes, over and over: those found lately need no lookup.
            PackedCode& recent = recent_[i][PackedCodeHash()(code) >> 58];
            if (!(code == recent)) {
                if (sets_[i].count(code) == 0) {
                    return false;
                }
                recent = code;
            }
        }
        return true;
    }

  private:
    // A code that no packing gives: its length byte is beyond 16.
    static constexpr PackedCode kNone{~0ULL, ~0ULL};

    std::array<std::unordered_set<PackedCode, PackedCodeHash>, 3> sets_;
    std::array<std::array<PackedCode, 64>, 3> recent_ = [] {
        std::array<std::array<PackedCode, 64>, 3> none;
        for (auto& column : none) {
            column.fill(kNone);
        }
        return none;
    }();
};

}  // namespace

tkCommandSession::tkCommandSession(Host host, bool shortcuts)
    : host_(host), shortcuts_(shortcuts), previousReporter_(errorReporter()) {
    setErrorReporter([this](const tkException& error) {
        std::string message = error.message();
        if (host_ == Host::OwnProcess) {
            // This process ends with the command: nothing is kept for a later save.
            const std::string::size_type note = message.find(kChangeKeptNote);
            if (note != std::string::npos) {
                message.erase(note);
            }
        } else if (previousReporter_) {
            previousReporter_(error);
        }
        reported_.push_back(std::move(message));
    });
}

tkCommandSession::~tkCommandSession() {
    setErrorReporter(previousReporter_);
}

void tkCommandSession::requireTimers() {
    if (host_ == Host::RunningApplication || timersLoaded_) {
        return;
    }
    timersLoaded_ = true;
    try {
        loadPreferences();
        tkAppState::instance().attachPreferencesHandlers();
        loadTimers();
    } catch (const tkException& error) {
        throw unreadable(error);
    }
    // Saved where each command says instead: see requireTimersSaved.
    tkAppState::instance().detachTimersHandler();
}

void tkCommandSession::prepareToAdd() {
    if (host_ == Host::RunningApplication || sheetOpened_) {
        return;
    }
    requireTimers();
    if (shortcuts_ && openForAppending(tkPreferences::instance().timeSheetFile())) {
        sheetOpened_ = true;
        appendsToFile_ = true;
        return;
    }
    openWholeSheet();
}

bool tkCommandSession::openForAppending(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    // Anything out of the ordinary takes the whole road, which knows how to report it.
    if (!manager.exists(*file) || acquireTimeSheetLock(path) != tkLockOutcome::Taken) {
        return false;
    }
    std::string text;
    tkSheetScanSummary summary;
    tkSheetRow last;
    bool codesKnown = true;
    try {
        // Read under the lock: these must be the bytes that the save replaces.
        text = manager.readFile(*file);
        KnownCodes known;
        summary = scanTimeSheetText(text, [&](const tkSheetRow& row) {
            codesKnown = codesKnown && known.holdCodesOf(row);
            last = row;
        });
    } catch (const tkException&) {
        return false;
    }
    // A new entry is dated today and lands behind every entry of its date or before, so it
    // goes last exactly when no entry is dated after today.
    const std::unique_ptr<tkDate> today = tkDate::today();
    tkSheetRow todayRow;
    todayRow.year = today->year();
    todayRow.month = today->month();
    todayRow.day = today->day();
    if (!summary.canonical || !summary.inDateOrder || !codesKnown ||
        (summary.rows > 0 && compareRowDates(last, todayRow) > 0)) {
        return false;
    }
    try {
        openTimeSheetForAppending(std::move(text));
    } catch (const tkException&) {
        return false;
    }
    return true;
}

void tkCommandSession::openWholeSheet() {
    if (sheetOpened_) {
        return;
    }
    sheetOpened_ = true;
    requireTimers();
    try {
        openTimeSheet();
    } catch (const tkFileLockedException&) {
        throw tkCommandFailure(kExitRefused,
                               "The time sheet " + tkPreferences::instance().timeSheetFile() +
                                   " is in use by a copy of Chronolet Plus that this command "
                                   "can't reach.");
    } catch (const tkException& error) {
        throw unreadable(error);
    }
}

std::string tkCommandSession::readSheetText(const std::string& path, bool* missing) {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    *missing = !manager.exists(*file);
    if (*missing) {
        return {};
    }
    try {
        return manager.readFile(*file);
    } catch (const tkException& error) {
        throw unreadable(error);
    }
}

void tkCommandSession::visitRows(bool anyOrder, const tkSheetRowVisitor& visit) {
    if (host_ == Host::OwnProcess && !shortcuts_) {
        openWholeSheet();
    }
    if (host_ == Host::RunningApplication || !shortcuts_) {
        visitSheetRows(tkTimeSheet::instance(), visit);
        return;
    }
    requireTimers();
    const std::string path = tkPreferences::instance().timeSheetFile();
    bool missing = false;
    sheetText_ = readSheetText(path, &missing);
    try {
        if (anyOrder) {
            scanTimeSheetText(sheetText_, visit);
            return;
        }
        // Loading sorts the rows by date, stably: the order the application shows at start.
        std::vector<tkSheetRow> rows;
        const char* begin = sheetText_.data();
        const char* end = begin + sheetText_.size();
        scanTimeSheetText(sheetText_, [&](const tkSheetRow& row) {
            tkSheetRow& kept = rows.emplace_back(row);
            for (std::string_view& field : kept.fields) {
                // A text that the file doesn't hold as such lives in the scan's scratch.
                if (std::less<const char*>()(field.data(), begin) ||
                    std::less<const char*>()(end, field.data())) {
                    field = rowTexts_.emplace_back(field);
                }
            }
        });
        std::stable_sort(rows.begin(), rows.end(), [](const tkSheetRow& a, const tkSheetRow& b) {
            return compareRowDates(a, b) < 0;
        });
        for (const tkSheetRow& row : rows) {
            visit(row);
        }
    } catch (const StringFormatException& error) {
        // Worded as the loader words it; the reason quotes the file's bytes.
        throw tkCommandFailure(kExitFileError, "The time sheet " + path + " is badly formatted: " +
                                                   quotableExcerpt(error.message(), 160) +
                                                   " The file is left as it is.");
    }
}

std::string tkCommandSession::reasons() const {
    std::string text;
    for (const std::string& message : reported_) {
        text += " " + message;
    }
    return text;
}

void tkCommandSession::requireTimersSaved() {
    if (host_ == Host::OwnProcess) {
        saveTimers();
    }
    if (tkTimerArray::instance().isDirty()) {
        throw tkCommandFailure(kExitFileError, "The timers were not saved." + reasons());
    }
}

void tkCommandSession::requireSheetSaved() {
    if (tkTimeSheet::instance().isDirty()) {
        throw tkCommandFailure(kExitFileError, "The time sheet was not saved." + reasons());
    }
}
