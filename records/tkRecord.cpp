#include "records/tkRecord.h"

#include <utility>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "records/tkKnownRecordItems.h"

namespace {

// A record never holds a null billing code. When the known lists refuse a new code, the
// record keeps a private, unlisted object of the text instead of losing it.
template <class Code>
std::shared_ptr<Code> internedOrPrivate(std::shared_ptr<Code> interned, const std::string& text) {
    if (interned) {
        return interned;
    }
    return std::make_shared<Code>(toUpperCase(text));
}

// The empty code of a new record: the record's own and not the list's empty entry, which would
// otherwise be held, and so in use, by every new record. One unlisted object of each kind
// serves them all, since nothing changes a code's text but a rename in the lists.
template <class Code>
const std::shared_ptr<Code>& unlistedEmpty() {
    static const std::shared_ptr<Code> empty = std::make_shared<Code>();
    return empty;
}

tkDate today() {
    return tkDate(std::string());
}

}  // namespace

tkRecord::tkRecord()
    : date_(today()),
      duration_(int32_t{0}),
      employee_(unlistedEmpty<tkEmployee>()),
      jobNumber_(unlistedEmpty<tkJobNumber>()),
      feeCode_(unlistedEmpty<tkFeeCode>()) {}

tkRecord::tkRecord(Unset) : date_(0, 0, 0), duration_(int32_t{0}) {}

tkRecord::tkRecord(const tkTagNode& node) : tkRecord(Unset{}) {
    fromTag(node);
}

tkRecord::tkRecord(std::shared_ptr<tkDate> date, std::shared_ptr<tkDuration> duration,
                   std::shared_ptr<tkEmployee> employee, std::shared_ptr<tkJobNumber> jobNumber,
                   std::shared_ptr<tkFeeCode> feeCode, std::shared_ptr<tkDescription> description)
    : date_(date ? *date : today()),
      duration_(duration ? *duration : tkDuration(int32_t{0})),
      description_(description ? *description : tkDescription()),
      employee_(std::move(employee)),
      jobNumber_(std::move(jobNumber)),
      feeCode_(std::move(feeCode)) {
    // Keep the promise that no field is null, whatever the caller handed in.
    if (!employee_)
        employee_ = std::make_shared<tkEmployee>();
    if (!jobNumber_)
        jobNumber_ = std::make_shared<tkJobNumber>();
    if (!feeCode_)
        feeCode_ = std::make_shared<tkFeeCode>();
}

tkRecord::tkRecord(const std::string& date, const std::string& duration,
                   const std::string& employee, const std::string& jobNumber,
                   const std::string& feeCode, std::string description)
    : date_(date), duration_(duration), description_(std::move(description)) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    employee_ = internedOrPrivate(known.getOrAddEmployee(employee), employee);
    jobNumber_ = internedOrPrivate(known.getOrAddJobNumber(jobNumber), jobNumber);
    feeCode_ = internedOrPrivate(known.getOrAddFeeCode(feeCode), feeCode);
}

tkRecord::tkRecord(const std::array<std::string_view, 6>& fieldTexts)
    // Today is not looked up for a date that is set before anyone can see the record.
    : date_(std::string(fieldTexts[0])),
      duration_(int32_t{0}),
      employee_(unlistedEmpty<tkEmployee>()),
      jobNumber_(unlistedEmpty<tkJobNumber>()),
      feeCode_(unlistedEmpty<tkFeeCode>()) {
    post();
    duration_ = tkDuration(std::string(fieldTexts[1]));
    post();
    setEmployeeText(fieldTexts[2]);
    setJobNumberText(fieldTexts[3]);
    setFeeCodeText(fieldTexts[4]);
    description_ = tkDescription(std::string(fieldTexts[5]));
    post();
}

tkRecord::tkRecord(const tkRecord& other)
    : ItkXMLCreatable(), date_(0, 0, 0), duration_(int32_t{0}) {
    copyFrom(other);
}

tkRecord& tkRecord::operator=(const tkRecord& other) {
    copyFrom(other);
    return *this;
}

tkRecord::~tkRecord() = default;

std::unique_ptr<tkTagNode> tkRecord::toTag() const {
    auto node = std::make_unique<tkTagNode>(kRecordElement);
    for (const char* name : kFieldNames) {
        node->addChild(name, getField(name)->toString());
    }
    return node;
}

void tkRecord::fromTag(const tkTagNode& node) {
    // Each value is built by its own rules first and then set through its text, so a stored
    // value comes back in canonical form. The date is first: a date without '/' throws before
    // any field of this record has changed.
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    for (const char* name : kFieldNames) {
        const std::string field = name;
        const std::string text = node.childText(field, std::string());
        std::string canonical;
        if (field == kFieldDate) {
            canonical = tkDate(text).toString();
        } else if (field == kFieldDuration) {
            canonical = tkDuration(text).toString();
        } else if (field == kFieldDescription) {
            canonical = tkDescription(text).toString();
        } else {
            const std::shared_ptr<tkRecordItem> code = known.getOrAdd(field, text);
            canonical =
                code ? code->toString() : known.makeItem(field, toUpperCase(text))->toString();
        }
        setField(field, canonical);
    }
    // Kept for data files that carry it; nothing writes it.
    std::string sheetId = node.childText(kRecordSheetId, std::string());
    sheetId_ = sheetId.empty() ? nullptr : std::make_unique<std::string>(std::move(sheetId));
}

tkStringConvertible* tkRecord::getField(const std::string& name) const {
    if (name == kFieldDate)
        return &date_;
    if (name == kFieldDescription)
        return &description_;
    if (name == kFieldDuration)
        return &duration_;
    if (name == kFieldEmployee)
        return employee_.get();
    if (name == kFieldFeeCode)
        return feeCode_.get();
    if (name == kFieldJobNumber)
        return jobNumber_.get();
    return nullptr;
}

std::shared_ptr<tkStringConvertible> tkRecord::setField(const std::string& name,
                                                        const std::string& text) {
    // The previous value is handed back alive, so a caller can compare it or keep it for undo:
    // a copy for the values that live in the record, the object itself for a code.
    std::shared_ptr<tkStringConvertible> old;
    if (name == kFieldDate) {
        // A date without '/' throws before anything changed.
        tkDate date(text);
        old = std::make_shared<tkDate>(date_);
        date_ = date;
        post();
        return old;
    }
    if (name == kFieldDescription) {
        old = std::make_shared<tkDescription>(description_);
    } else if (name == kFieldDuration) {
        old = std::make_shared<tkDuration>(duration_);
    } else if (name == kFieldEmployee) {
        old = employee_;
    } else if (name == kFieldFeeCode) {
        old = feeCode_;
    } else if (name == kFieldJobNumber) {
        old = jobNumber_;
    }
    assignField(name, text);
    return old;
}

bool tkRecord::assignField(const std::string& name, const std::string& text) {
    if (name == kFieldDate) {
        date_ = tkDate(text);
        post();
    } else if (name == kFieldDescription) {
        description_ = tkDescription(text);
        post();
    } else if (name == kFieldDuration) {
        duration_ = tkDuration(text);
        post();
    } else if (name == kFieldEmployee) {
        setEmployeeText(text);
    } else if (name == kFieldFeeCode) {
        setFeeCodeText(text);
    } else if (name == kFieldJobNumber) {
        setJobNumberText(text);
    } else {
        return false;
    }
    return true;
}

void tkRecord::setEmployeeText(std::string_view text) {
    const std::string code(text);
    setEmployee(internedOrPrivate(tkKnownRecordItems::instance().getOrAddEmployee(code), code));
}

void tkRecord::setJobNumberText(std::string_view text) {
    const std::string code(text);
    setJobNumber(internedOrPrivate(tkKnownRecordItems::instance().getOrAddJobNumber(code), code));
}

void tkRecord::setFeeCodeText(std::string_view text) {
    const std::string code(text);
    setFeeCode(internedOrPrivate(tkKnownRecordItems::instance().getOrAddFeeCode(code), code));
}

void tkRecord::copyFrom(const tkRecord& other) {
    // New private values, built from the other's numbers and text (the date's text cache is
    // not carried over); the billing codes are shared so copies stay tied to the same codes.
    date_ = tkDate(other.date_.month(), other.date_.day(), other.date_.year());
    duration_ = tkDuration(other.duration_.totalSeconds());
    description_ = tkDescription(other.description_.text());
    employee_ = other.employee_;
    jobNumber_ = other.jobNumber_;
    feeCode_ = other.feeCode_;
    sheetId_ = other.sheetId_ ? std::make_unique<std::string>(*other.sheetId_) : nullptr;
}

void tkRecord::noteEdited() {
    post();
}

void tkRecord::setDate(std::shared_ptr<tkDate> date) {
    date_ = date ? *date : today();
    post();
}

void tkRecord::setDescription(std::shared_ptr<tkDescription> description) {
    description_ = description ? *description : tkDescription();
    post();
}

void tkRecord::setDuration(std::shared_ptr<tkDuration> duration) {
    duration_ = duration ? *duration : tkDuration(int32_t{0});
    post();
}

void tkRecord::setEmployee(std::shared_ptr<tkEmployee> employee) {
    employee_ = employee ? std::move(employee) : std::make_shared<tkEmployee>();
    post();
}

void tkRecord::setFeeCode(std::shared_ptr<tkFeeCode> feeCode) {
    feeCode_ = feeCode ? std::move(feeCode) : std::make_shared<tkFeeCode>();
    post();
}

void tkRecord::setJobNumber(std::shared_ptr<tkJobNumber> jobNumber) {
    jobNumber_ = jobNumber ? std::move(jobNumber) : std::make_shared<tkJobNumber>();
    post();
}

bool tkRecord::operator==(const tkRecord& other) const {
    // The values that live in a record are the same objects only in the record itself.
    return this == &other;
}

void tkRecord::post() {
    // Posted on every set, changed or not: observers treat it as "look again". Reading a large
    // time sheet posts this six times per row before anyone listens to the new records; while
    // nobody listens at all, the post is answered here, without building a notification.
    tkNotificationCenter& center = tkNotificationCenter::instance();
    static const size_t& listeners = center.observerCount(kRecordWasEdited);
    if (listeners != 0) {
        center.postNotification(tkNotification(kRecordWasEdited, this, 0));
    }
}
