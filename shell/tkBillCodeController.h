#pragma once

#include <cstdint>
#include <string>

class ItkBillCodeUI;

// The rules of the billing code windows, apart from any window system: one
// controller per list drives that list's ItkBillCodeUI, and the static
// operations act on the whole register (tkKnownRecordItems) for the window.
// Every change is saved at once: the lists travel in the preferences file,
// and the direct saveTimers covers a run in which no timers handler is
// attached.
class tkBillCodeController {
  public:
    // `fieldName` is the list's type name: "employee", "fee code" or
    // "job number". The ui is not owned and must outlive the controller.
    tkBillCodeController(ItkBillCodeUI& ui, std::string fieldName);

    const std::string& fieldName() const { return _fieldName; }

    // Deletes the selected codes from the bottom up, so that the lower rows
    // keep their numbers while the higher ones go. A code still held by a
    // record (a timer, the time sheet, the default record, undo history) is
    // refused and stays. True when at least one code went; false means
    // nothing was selected or every selected code was refused.
    bool deleteSelected();

    // Renames the code at `row` in place, so every record holding it shows
    // the new text at once; the text is sanitised as the code's field
    // requires. Renaming onto a code that exists leaves one entry in the
    // list (no merge of the objects). The timers and the time sheet are
    // marked dirty, so that their files carry the new text too; the code's
    // own text (in any case) changes nothing. Answers
    // false, changing nothing, for a row out of range or a text that
    // sanitises to nothing: an emptied cell would silently strip the code
    // from every record that holds it.
    bool renameRow(int32_t row, const std::string& text);

    // Adds one code per line of `text` to the list of `fieldName`. Empty
    // lines reach the model, which finds the empty code there already.
    static void addCodes(const std::string& fieldName, const std::string& text);

    // Writes the whole register as tagged text to `path` with the crash-safe
    // save; throws tkFileWriteException when that fails.
    static void exportCodes(const std::string& path);

    // Replaces the unused codes with those of the file at `path`: codes that
    // records hold stay, the rest go, then the file's codes are added. The
    // file is read and parsed before anything is cleared, so that a file
    // that can't be read (IOException) or parsed (tkMalformedFileException),
    // or that holds no billing code section at all, changes nothing.
    static void importCodes(const std::string& path);

    // Removes every code that nothing holds, from all three lists.
    static void clearCodes();

  private:
    ItkBillCodeUI& _ui;
    std::string _fieldName;
};
