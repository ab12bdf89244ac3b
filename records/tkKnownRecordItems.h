#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "foundation/ItkXMLCreatable.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkRecordItem.h"

class tkTagNode;

// The register of billing codes: one ordered list each of employees, job numbers and fee
// codes, addressed by the type names "employee", "job number" and "fee code". One code text
// has one shared object, and every record that uses the code shares it.
//
// Keys are the upper-cased texts in unsigned byte order (std::string's own order), so digits
// come before letters. Every list always holds the empty code, which sorts first; indexes
// seen from outside skip it: index 0 is the first real code and -1 the empty one.
//
// Any change marks the preferences dirty, since their file carries the lists.
//
// Operations taking a type name throw InvalidTypeNameException
// ("No map with type name <name> exists.") for any other name, except getOrAdd() and
// makeItem(), which answer null.
class tkKnownRecordItems : public ItkXMLCreatable {
  public:
    using Map = std::map<std::string, std::shared_ptr<tkRecordItem>>;

    static tkKnownRecordItems& instance();

    // The shared object of the code, added (upper-cased, sanitised, cut) if it is new. Null
    // when the code is new and adding isn't allowed.
    std::shared_ptr<tkEmployee> getOrAddEmployee(const std::string& text);
    std::shared_ptr<tkJobNumber> getOrAddJobNumber(const std::string& text);
    std::shared_ptr<tkFeeCode> getOrAddFeeCode(const std::string& text);
    // Dispatches on the exact type name; null for any other name.
    std::shared_ptr<tkRecordItem> getOrAdd(const std::string& typeName, const std::string& text);

    // A new, unlisted item of that type; null for any other type name.
    std::unique_ptr<tkRecordItem> makeItem(const std::string& typeName,
                                           const std::string& text) const;

    // Number of codes, the empty one not counted.
    int32_t count(const std::string& typeName) const;
    // The item or key at an index: null at or past the end; any negative index gives the
    // empty entry.
    tkRecordItem* itemAt(const std::string& typeName, int32_t index) const;
    const std::string* codeAt(const std::string& typeName, int32_t index) const;
    // The first key not below the upper-cased prefix, if it begins with it; else null. An
    // empty prefix completes to the empty code.
    const std::string* complete(const std::string& typeName, const std::string& prefix) const;
    // Stores item under toUpperCase(code) without any check.
    void setItem(const std::string& typeName, const std::string& code,
                 std::shared_ptr<tkRecordItem> item);
    // All keys in order, the leading empty one included.
    std::vector<std::string> codes(const std::string& typeName) const;
    std::vector<std::string> feeCodes() const;
    std::vector<std::string> employees() const;
    std::vector<std::string> jobNumbers() const;

    // For the three below an index below -1 is out of range, unlike itemAt/codeAt.
    // Removes and returns the item at index; an empty pointer when out of range.
    std::shared_ptr<tkRecordItem> takeAt(const std::string& typeName, int32_t index);
    // Renames the item in place, so every record holding it shows the new code at once. If
    // the new key is taken already the renamed object leaves the list and the list keeps the
    // other one: no merge. An index out of range changes nothing.
    void renameAt(const std::string& typeName, int32_t index, const std::string& newText);
    // How many renames there have been: the one way a record's text changes without a post
    // of the record, which a holder of rendered record text must check.
    uint64_t renameCount() const { return renameCount_; }
    // Removes the code unless something besides the list still holds it (a record, a timer,
    // the default record, undo history). False when refused or out of range.
    bool removeAt(const std::string& typeName, int32_t index);
    // Empties the three lists: all entries with force, else only those no one else holds;
    // then the empty codes are entered again.
    void clear(bool force);
    // When false, getOrAdd answers null for codes not yet listed.
    void setAddAllowed(bool allowed);
    bool isAddAllowed() const { return addAllowed_; }

    // Element "tkKnownRecordItems" with "job numbers", "fee codes" and "employees", each of
    // "code" children holding the keys in order.
    std::unique_ptr<tkTagNode> toTag() const override;
    // Adds every code found in the three sections; never removes: lists merge.
    void fromTag(const tkTagNode& node) override;
    ~tkKnownRecordItems() override;

    tkKnownRecordItems(const tkKnownRecordItems&) = delete;
    tkKnownRecordItems& operator=(const tkKnownRecordItems&) = delete;

    // The code lookups that found a listed code, by the text asked for. Reading a time sheet
    // asks for the same few codes once a row, and an upper-cased copy and a tree search each
    // time is the larger part of reading a row. Only finds are remembered, never additions,
    // so a hit gives what the search would, without marking anything dirty, as the search
    // does; every change to a list other than an addition forgets them all.
    struct Hit {
        Map::iterator entry;
        tkRecordItem* item;
    };
    using HitIndex = std::unordered_map<std::string, Hit>;

  private:
    tkKnownRecordItems();
    void forgetHits();

    Map& mapFor(const std::string& typeName);
    const Map& mapFor(const std::string& typeName) const;
    Map* findMap(const std::string& typeName);
    void markDirty();

    bool addAllowed_ = true;
    uint64_t renameCount_ = 0;
    Map employees_;
    Map jobNumbers_;
    Map feeCodes_;
    HitIndex employeeHits_;
    HitIndex jobNumberHits_;
    HitIndex feeCodeHits_;
};
