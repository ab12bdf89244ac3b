#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "foundation/ItkXMLCreatable.h"
#include "records/tkDate.h"
#include "records/tkDescription.h"
#include "records/tkDuration.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkRecordFields.h"

class tkTagNode;

// One job entry: date, duration, employee, job number, fee code, description.
//
// Date, duration and description are private to the record and live inside it: a time sheet
// holds a record per row, and three more objects per row would take more memory than the
// rest of the row. A setter replaces the value, and setField hands back a copy of the one
// it replaced. The three billing codes are shared with tkKnownRecordItems and with every
// other record of the same code, so renaming a code in the list renames it here too, and a
// code that any record holds can't be removed. No field is ever null.
//
// Every setter replaces the field's value (for a code, the object held) and posts "Record was
// edited." (sender: this record), whether or not the value changed; copyFrom() posts nothing.
class tkRecord : public ItkXMLCreatable {
  public:
    // Today's date, a zero duration, and four empty text fields; the empty codes are unlisted
    // objects (one of each kind for every new record), not the known lists' empty entries.
    tkRecord();
    // Reads the record from tagged text; see fromTag(). Throws what fromTag() throws.
    explicit tkRecord(const tkTagNode& node);
    // Takes the values of the date, duration and description given, and the codes' objects.
    tkRecord(std::shared_ptr<tkDate> date, std::shared_ptr<tkDuration> duration,
             std::shared_ptr<tkEmployee> employee, std::shared_ptr<tkJobNumber> jobNumber,
             std::shared_ptr<tkFeeCode> feeCode, std::shared_ptr<tkDescription> description);
    // Builds each field from text; the billing codes go through the known lists, which adds
    // unknown codes to them. A date without '/' throws StringFormatException.
    tkRecord(const std::string& date, const std::string& duration, const std::string& employee,
             const std::string& jobNumber, const std::string& feeCode, std::string description);
    // A default record whose six fields, in field order, are then set from the texts as
    // setField sets them, each with its post: the record of a line of tab-delimited text. The
    // date is set first, so a date without '/' throws before any post or code list change.
    explicit tkRecord(const std::array<std::string_view, 6>& fieldTexts);
    // As copyFrom().
    tkRecord(const tkRecord& other);
    tkRecord& operator=(const tkRecord& other);

    // Element "record" with one child per field in field order; sheetId isn't written.
    std::unique_ptr<tkTagNode> toTag() const override;
    // Reads the six fields (case-insensitive child names; a missing child reads as empty
    // text) and "sheet_id". Posts "Record was edited." once per field. A date without '/'
    // throws StringFormatException before any field has changed.
    void fromTag(const tkTagNode& node) override;
    ~tkRecord() override;

    tkDate* date() const { return &date_; }
    tkDuration* duration() const { return &duration_; }
    tkDescription* description() const { return &description_; }
    // By reference: reading a code's text needn't touch the count of its holders.
    const std::shared_ptr<tkEmployee>& employee() const { return employee_; }
    const std::shared_ptr<tkJobNumber>& jobNumber() const { return jobNumber_; }
    const std::shared_ptr<tkFeeCode>& feeCode() const { return feeCode_; }
    std::string sheetId() const { return sheetId_ ? *sheetId_ : std::string(); }

    // The field of that exact name, or null for any other name.
    tkStringConvertible* getField(const std::string& name) const;

    // Sets the field of that exact name from text and returns the item it held before (for
    // date, duration and description a copy of it), or null (and no change) for an unknown
    // name. Billing codes are interned: the stored code is the known list's object,
    // upper-cased and cut to its length.
    std::shared_ptr<tkStringConvertible> setField(const std::string& name, const std::string& text);

    // Date, duration and description of equal value (the date's rendered text is not carried
    // over); the billing codes are shared with other; sheetId is copied. Posts nothing.
    void copyFrom(const tkRecord& other);

    // Posts "Record was edited." without changing anything.
    void noteEdited();

    // Each replaces the field and posts "Record was edited.". A null argument stores a new
    // empty value instead. Date, duration and description take the value of the object
    // given, which they don't keep.
    void setDate(std::shared_ptr<tkDate> date);
    void setDescription(std::shared_ptr<tkDescription> description);
    void setDuration(std::shared_ptr<tkDuration> duration);
    void setEmployee(std::shared_ptr<tkEmployee> employee);
    void setFeeCode(std::shared_ptr<tkFeeCode> feeCode);
    void setJobNumber(std::shared_ptr<tkJobNumber> jobNumber);

    // Identity, not value: true when all six items are the very same objects, which for values
    // that live in the record means the record itself.
    bool operator==(const tkRecord& other) const;

  private:
    struct Unset {};
    explicit tkRecord(Unset);
    // setField without the old item; false for an unknown name.
    bool assignField(const std::string& name, const std::string& text);
    void setEmployeeText(std::string_view text);
    void setJobNumberText(std::string_view text);
    void setFeeCodeText(std::string_view text);
    void post();

    // Reached through a const record as through a pointer, like the codes.
    mutable tkDate date_;
    mutable tkDuration duration_;
    mutable tkDescription description_;
    std::shared_ptr<tkEmployee> employee_;
    std::shared_ptr<tkJobNumber> jobNumber_;
    std::shared_ptr<tkFeeCode> feeCode_;
    // Hardly any record has one: null for the empty text.
    std::unique_ptr<std::string> sheetId_;
};
