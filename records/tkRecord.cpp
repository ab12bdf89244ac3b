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

}  // namespace

tkRecord::tkRecord()
    : date_(std::make_shared<tkDate>(std::string())),
      duration_(std::make_shared<tkDuration>(std::string("0.0"))),
      description_(std::make_shared<tkDescription>()),
      employee_(std::make_shared<tkEmployee>()),
      jobNumber_(std::make_shared<tkJobNumber>()),
      feeCode_(std::make_shared<tkFeeCode>()) {}

tkRecord::tkRecord(Unset) {}

tkRecord::tkRecord(const tkTagNode& node) : tkRecord(Unset{}) {
    fromTag(node);
}

tkRecord::tkRecord(std::shared_ptr<tkDate> date, std::shared_ptr<tkDuration> duration,
                   std::shared_ptr<tkEmployee> employee, std::shared_ptr<tkJobNumber> jobNumber,
                   std::shared_ptr<tkFeeCode> feeCode, std::shared_ptr<tkDescription> description)
    : date_(std::move(date)),
      duration_(std::move(duration)),
      description_(std::move(description)),
      employee_(std::move(employee)),
      jobNumber_(std::move(jobNumber)),
      feeCode_(std::move(feeCode)) {
    // Keep the promise that no field is null, whatever the caller handed in.
    if (!date_)
        date_ = std::make_shared<tkDate>(std::string());
    if (!duration_)
        duration_ = std::make_shared<tkDuration>(0);
    if (!description_)
        description_ = std::make_shared<tkDescription>();
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
    : date_(std::make_shared<tkDate>(date)),
      duration_(std::make_shared<tkDuration>(duration)),
      description_(std::make_shared<tkDescription>(std::move(description))) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    employee_ = internedOrPrivate(known.getOrAddEmployee(employee), employee);
    jobNumber_ = internedOrPrivate(known.getOrAddJobNumber(jobNumber), jobNumber);
    feeCode_ = internedOrPrivate(known.getOrAddFeeCode(feeCode), feeCode);
}

tkRecord::tkRecord(const tkRecord& other) : ItkXMLCreatable() {
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
    sheetId_ = node.childText(kRecordSheetId, std::string());
}

tkStringConvertible* tkRecord::getField(const std::string& name) const {
    if (name == kFieldDate)
        return date_.get();
    if (name == kFieldDescription)
        return description_.get();
    if (name == kFieldDuration)
        return duration_.get();
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
    // The previous object is handed back alive, so a caller can compare it or keep it for undo.
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    std::shared_ptr<tkStringConvertible> old;
    if (name == kFieldDate) {
        old = date_;
        setDate(std::make_shared<tkDate>(text));
    } else if (name == kFieldDescription) {
        old = description_;
        setDescription(std::make_shared<tkDescription>(text));
    } else if (name == kFieldDuration) {
        old = duration_;
        setDuration(std::make_shared<tkDuration>(text));
    } else if (name == kFieldEmployee) {
        old = employee_;
        setEmployee(internedOrPrivate(known.getOrAddEmployee(text), text));
    } else if (name == kFieldFeeCode) {
        old = feeCode_;
        setFeeCode(internedOrPrivate(known.getOrAddFeeCode(text), text));
    } else if (name == kFieldJobNumber) {
        old = jobNumber_;
        setJobNumber(internedOrPrivate(known.getOrAddJobNumber(text), text));
    }
    return old;
}

void tkRecord::copyFrom(const tkRecord& other) {
    // New private values, built from the other's numbers and text (the date's text cache is
    // not carried over); the billing codes are shared so copies stay tied to the same codes.
    auto date =
        std::make_shared<tkDate>(other.date_->month(), other.date_->day(), other.date_->year());
    auto duration = std::make_shared<tkDuration>(other.duration_->totalSeconds());
    auto description = std::make_shared<tkDescription>(other.description_->text());
    date_ = std::move(date);
    duration_ = std::move(duration);
    description_ = std::move(description);
    employee_ = other.employee_;
    jobNumber_ = other.jobNumber_;
    feeCode_ = other.feeCode_;
    sheetId_ = other.sheetId_;
}

void tkRecord::noteEdited() {
    post();
}

void tkRecord::setDate(std::shared_ptr<tkDate> date) {
    date_ = date ? std::move(date) : std::make_shared<tkDate>(std::string());
    post();
}

void tkRecord::setDescription(std::shared_ptr<tkDescription> description) {
    description_ = description ? std::move(description) : std::make_shared<tkDescription>();
    post();
}

void tkRecord::setDuration(std::shared_ptr<tkDuration> duration) {
    duration_ = duration ? std::move(duration) : std::make_shared<tkDuration>(0);
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
    return date_ == other.date_ && duration_ == other.duration_ && employee_ == other.employee_ &&
           jobNumber_ == other.jobNumber_ && feeCode_ == other.feeCode_ &&
           description_ == other.description_;
}

void tkRecord::post() {
    // Posted on every set, changed or not: observers treat it as "look again".
    tkNotificationCenter::instance().postNotification(tkNotification(kRecordWasEdited, this, 0));
}
