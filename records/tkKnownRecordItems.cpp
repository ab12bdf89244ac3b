#include "records/tkKnownRecordItems.h"

#include <iterator>

#include "foundation/InvalidTypeNameException.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "records/tkPreferencesLink.h"
#include "records/tkRecordFields.h"

namespace {

// False while the singleton is being built, so that entering the empty codes doesn't mark the
// preferences dirty before anything has been read.
bool gInstanceReady = false;

void markDirtyOnceReady() {
    if (gInstanceReady) {
        markPreferencesDirty();
    }
}

// The map entry at an outside index (0 is the first real code, -1 the empty entry). Walks
// from the beginning: the lists are short.
template <class MapT>
auto entryAt(MapT& map, int64_t position) {
    auto it = map.begin();
    std::advance(it, position);
    return it;
}

// itemAt/codeAt: any negative index means the empty entry.
int64_t lookupPosition(int32_t index) {
    return index < 0 ? 0 : static_cast<int64_t>(index) + 1;
}

// takeAt/removeAt/renameAt: below -1 is out of range. -1 when out of range.
int64_t editPosition(const tkKnownRecordItems::Map& map, int32_t index) {
    const int64_t position = static_cast<int64_t>(index) + 1;
    if (position < 0 || position >= static_cast<int64_t>(map.size())) {
        return -1;
    }
    return position;
}

// Texts are remembered per list up to this many; past it the memory starts afresh. A time
// sheet uses a few thousand codes at most.
constexpr size_t kMaxHits = 1 << 14;

// Each leaf's own class and map behind the three typed lookups.
template <class Leaf>
std::shared_ptr<Leaf> getOrAddIn(tkKnownRecordItems::Map& map, tkKnownRecordItems::HitIndex& hits,
                                 bool addAllowed, const std::string& text) {
    if (auto hit = hits.find(text); hit != hits.end()) {
        // The item is the entry's own object, so this shares the entry's ownership.
        return std::shared_ptr<Leaf>(hit->second.entry->second,
                                     static_cast<Leaf*>(hit->second.item));
    }
    const std::string key = toUpperCase(text);
    if (auto found = map.find(key); found != map.end()) {
        std::shared_ptr<Leaf> leaf = std::dynamic_pointer_cast<Leaf>(found->second);
        // A stray entry of another class (setItem stores anything) is looked up every time.
        if (leaf) {
            if (hits.size() >= kMaxHits) {
                hits.clear();
            }
            hits.emplace(text, tkKnownRecordItems::Hit{found, leaf.get()});
        }
        return leaf;
    }
    if (!addAllowed) {
        return nullptr;
    }
    auto item = std::make_shared<Leaf>(key);
    // The cut can turn a new long text into a code that is listed already; then the list's
    // object wins and the new one is dropped.
    auto held = map.emplace(item->text(), item).first;
    // Marked dirty even when the cut hit a listed code: the caller asked for an addition.
    markDirtyOnceReady();
    return std::dynamic_pointer_cast<Leaf>(held->second);
}

const char* const kRootElement = "tkKnownRecordItems";
const char* const kCodeElement = "code";

}  // namespace

tkKnownRecordItems& tkKnownRecordItems::instance() {
    static tkKnownRecordItems items;
    gInstanceReady = true;
    return items;
}

tkKnownRecordItems::tkKnownRecordItems() {
    getOrAdd(kFieldEmployee, std::string());
    getOrAdd(kFieldFeeCode, std::string());
    getOrAdd(kFieldJobNumber, std::string());
}

tkKnownRecordItems::~tkKnownRecordItems() = default;

void tkKnownRecordItems::forgetHits() {
    employeeHits_.clear();
    jobNumberHits_.clear();
    feeCodeHits_.clear();
}

void tkKnownRecordItems::markDirty() {
    markDirtyOnceReady();
}

tkKnownRecordItems::Map* tkKnownRecordItems::findMap(const std::string& typeName) {
    if (typeName == kFieldEmployee)
        return &employees_;
    if (typeName == kFieldJobNumber)
        return &jobNumbers_;
    if (typeName == kFieldFeeCode)
        return &feeCodes_;
    return nullptr;
}

tkKnownRecordItems::Map& tkKnownRecordItems::mapFor(const std::string& typeName) {
    Map* map = findMap(typeName);
    if (map == nullptr) {
        throw InvalidTypeNameException("No map with type name " + typeName + " exists.");
    }
    return *map;
}

const tkKnownRecordItems::Map& tkKnownRecordItems::mapFor(const std::string& typeName) const {
    return const_cast<tkKnownRecordItems*>(this)->mapFor(typeName);
}

std::shared_ptr<tkEmployee> tkKnownRecordItems::getOrAddEmployee(const std::string& text) {
    return getOrAddIn<tkEmployee>(employees_, employeeHits_, addAllowed_, text);
}

std::shared_ptr<tkJobNumber> tkKnownRecordItems::getOrAddJobNumber(const std::string& text) {
    return getOrAddIn<tkJobNumber>(jobNumbers_, jobNumberHits_, addAllowed_, text);
}

std::shared_ptr<tkFeeCode> tkKnownRecordItems::getOrAddFeeCode(const std::string& text) {
    return getOrAddIn<tkFeeCode>(feeCodes_, feeCodeHits_, addAllowed_, text);
}

std::shared_ptr<tkRecordItem> tkKnownRecordItems::getOrAdd(const std::string& typeName,
                                                           const std::string& text) {
    if (typeName == kFieldEmployee)
        return getOrAddEmployee(text);
    if (typeName == kFieldJobNumber)
        return getOrAddJobNumber(text);
    if (typeName == kFieldFeeCode)
        return getOrAddFeeCode(text);
    return nullptr;
}

std::unique_ptr<tkRecordItem> tkKnownRecordItems::makeItem(const std::string& typeName,
                                                           const std::string& text) const {
    if (typeName == kFieldEmployee)
        return std::make_unique<tkEmployee>(text);
    if (typeName == kFieldJobNumber)
        return std::make_unique<tkJobNumber>(text);
    if (typeName == kFieldFeeCode)
        return std::make_unique<tkFeeCode>(text);
    return nullptr;
}

int32_t tkKnownRecordItems::count(const std::string& typeName) const {
    return static_cast<int32_t>(mapFor(typeName).size()) - 1;
}

tkRecordItem* tkKnownRecordItems::itemAt(const std::string& typeName, int32_t index) const {
    const Map& map = mapFor(typeName);
    const int64_t position = lookupPosition(index);
    if (position >= static_cast<int64_t>(map.size())) {
        return nullptr;
    }
    return entryAt(map, position)->second.get();
}

const std::string* tkKnownRecordItems::codeAt(const std::string& typeName, int32_t index) const {
    const Map& map = mapFor(typeName);
    const int64_t position = lookupPosition(index);
    if (position >= static_cast<int64_t>(map.size())) {
        return nullptr;
    }
    return &entryAt(map, position)->first;
}

const std::string* tkKnownRecordItems::complete(const std::string& typeName,
                                                const std::string& prefix) const {
    const Map& map = mapFor(typeName);
    const std::string key = toUpperCase(prefix);
    auto it = map.lower_bound(key);
    if (it != map.end() && startsWith(it->first, key)) {
        return &it->first;
    }
    return nullptr;
}

void tkKnownRecordItems::setItem(const std::string& typeName, const std::string& code,
                                 std::shared_ptr<tkRecordItem> item) {
    forgetHits();
    mapFor(typeName)[toUpperCase(code)] = std::move(item);
}

std::vector<std::string> tkKnownRecordItems::codes(const std::string& typeName) const {
    const Map& map = mapFor(typeName);
    std::vector<std::string> result;
    result.reserve(map.size());
    for (const auto& entry : map) {
        result.push_back(entry.first);
    }
    return result;
}

std::vector<std::string> tkKnownRecordItems::feeCodes() const {
    return codes(kFieldFeeCode);
}

std::vector<std::string> tkKnownRecordItems::employees() const {
    return codes(kFieldEmployee);
}

std::vector<std::string> tkKnownRecordItems::jobNumbers() const {
    return codes(kFieldJobNumber);
}

std::shared_ptr<tkRecordItem> tkKnownRecordItems::takeAt(const std::string& typeName,
                                                         int32_t index) {
    Map& map = mapFor(typeName);
    const int64_t position = editPosition(map, index);
    if (position < 0) {
        return nullptr;
    }
    forgetHits();
    auto it = entryAt(map, position);
    std::shared_ptr<tkRecordItem> item = std::move(it->second);
    map.erase(it);
    return item;
}

void tkKnownRecordItems::renameAt(const std::string& typeName, int32_t index,
                                  const std::string& newText) {
    Map& map = mapFor(typeName);
    std::shared_ptr<tkRecordItem> item = takeAt(typeName, index);
    if (!item) {
        return;
    }
    // takeAt forgot the finds already; the renamed object may be found under its new text.
    // Renamed in place: every record sharing the object shows the new code at once.
    item->setFromString(toUpperCase(newText));
    ++renameCount_;
    // If the new code is listed already, the list keeps its object and the renamed one lives
    // on only in the records that hold it. Deliberately no merge.
    map.emplace(item->text(), item);
    markDirty();
}

bool tkKnownRecordItems::removeAt(const std::string& typeName, int32_t index) {
    Map& map = mapFor(typeName);
    const int64_t position = editPosition(map, index);
    if (position < 0) {
        return false;
    }
    auto it = entryAt(map, position);
    // Any holder beside the list (a timer's record, a row, the default record, undo history)
    // keeps the code in use, and a code in use can't be removed.
    if (it->second.use_count() > 1) {
        return false;
    }
    forgetHits();
    map.erase(it);
    markDirty();
    return true;
}

void tkKnownRecordItems::clear(bool force) {
    forgetHits();
    for (Map* map : {&feeCodes_, &employees_, &jobNumbers_}) {
        for (auto it = map->begin(); it != map->end();) {
            const bool heldByListAlone = it->second && it->second.use_count() == 1;
            if (force || heldByListAlone) {
                it = map->erase(it);
            } else {
                ++it;
            }
        }
    }
    // As in construction; a dropped empty entry comes back as a new object.
    getOrAdd(kFieldEmployee, std::string());
    getOrAdd(kFieldFeeCode, std::string());
    getOrAdd(kFieldJobNumber, std::string());
}

void tkKnownRecordItems::setAddAllowed(bool allowed) {
    // Finds stay true either way: the flag only decides about codes not yet listed.
    addAllowed_ = allowed;
}

std::unique_ptr<tkTagNode> tkKnownRecordItems::toTag() const {
    auto node = std::make_unique<tkTagNode>(kRootElement);
    for (const char* typeName : {kFieldJobNumber, kFieldFeeCode, kFieldEmployee}) {
        const Map& map = mapFor(typeName);
        if (map.empty()) {
            continue;
        }
        auto section = std::make_unique<tkTagNode>(std::string(typeName) + "s");
        for (const auto& entry : map) {
            section->addChild(kCodeElement, entry.first);
        }
        node->addChild(std::move(section));
    }
    return node;
}

void tkKnownRecordItems::fromTag(const tkTagNode& node) {
    // Reading merges into what is listed; only the three sections count, whatever the outer
    // element or the children's names.
    for (const char* typeName : {kFieldJobNumber, kFieldFeeCode, kFieldEmployee}) {
        const tkTagNode* section = node.findChild(std::string(typeName) + "s");
        if (section == nullptr) {
            continue;
        }
        for (int32_t i = 0; i < section->childCount(); ++i) {
            getOrAdd(typeName, section->childAt(i)->text());
        }
    }
}
