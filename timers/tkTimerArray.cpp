#include "timers/tkTimerArray.h"

#include <algorithm>

#include "foundation/tkException.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "records/tkDuration.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerSettings.h"
#include "timers/tkTimerWindow.h"

namespace {

constexpr const char* kArrayElement = "timerArray";
constexpr const char* kFrontMostKey = "frontMostTimerNumber";
constexpr const char* kTimerOpenKey = "timerOpen";
constexpr const char* kGlobalDetailModeKey = "globalDetailMode";
constexpr const char* kDrawerOpenKey = "drawerOpen";
// Older files named the front timer by its id; read, never written.
constexpr const char* kClIdKey = "cl_id";
constexpr const char* kIdKey = "id";
// Older files name every timer "timer"; newer ones "timer <number>".
constexpr const char* kOldTimerElement = "timer";
constexpr const char* kTimerElementPrefix = "timer ";

[[noreturn]] void throwIndexOutOfBounds() {
    throw tkException("IndexOutOfBounds", "");
}

bool isTimerElement(const std::string& name) {
    return name == kOldTimerElement || startsWith(name, kTimerElementPrefix);
}

}  // namespace

tkTimerArray& tkTimerArray::instance() {
    static tkTimerArray array;
    return array;
}

tkTimerArray::tkTimerArray() {
    // The windows unregister from the center when the array dies at exit, so
    // the center must be built first and thus outlive the array.
    tkNotificationCenter::instance();
}

tkTimerArray::~tkTimerArray() = default;

void tkTimerArray::post() {
    tkNotificationCenter::instance().postNotification(tkNotification(kTimerBecameDirty, this, 0));
}

void tkTimerArray::postFrontMostChanged(int32_t oldNumber, int32_t newNumber) {
    FrontMostChange change = std::make_shared<std::pair<int32_t, int32_t>>(oldNumber, newNumber);
    tkNotificationCenter::instance().postNotification(tkNotification(
        kFrontmostTimerChanged, this, static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&change))));
}

void tkTimerArray::addController(std::unique_ptr<tkTimerController> controller) {
    tkTimerController* added = controller.get();
    timers_.push_back(std::move(controller));
    added->setNumber(numTimers() - 1);
    // Showing each timer of a file as it comes and sorting all titles again
    // made a load quadratic in the number of timers; the load does both once
    // at its end.
    if (addingFromFile_) {
        return;
    }
    // A bulk load that silenced the center refreshes the window itself when it
    // resumes.
    if (!tkNotificationCenter::instance().isSuspended()) {
        refreshFrontWindow(static_cast<int32_t>(added->getNumber()));
    }
    rebuildTitleOrder();
}

void tkTimerArray::addWindow(std::unique_ptr<tkTimerWindow> window) {
    windows_.push_back(std::move(window));
}

tkTimerController* tkTimerArray::controllerAt(int32_t index) const {
    if (index < 0 || static_cast<uint32_t>(index) >= numTimers()) {
        throwIndexOutOfBounds();
    }
    return timers_[static_cast<size_t>(index)].get();
}

tkTimer* tkTimerArray::timerAt(int32_t index) const {
    return controllerAt(index)->getTimer();
}

tkTimerWindow* tkTimerArray::windowForTimer(int32_t n) {
    if (windows_.empty()) {
        makeFirstWindow();
    }
    // Multi-window working was never finished: outside single-window mode a
    // timer above 0 has no window and throws.
    const int32_t index = timersSingleWindowMode() ? 0 : n;
    if (index < 0 || static_cast<uint32_t>(index) >= numWindows()) {
        throwIndexOutOfBounds();
    }
    return windows_[static_cast<size_t>(index)].get();
}

int32_t tkTimerArray::getFrontMost() {
    if (static_cast<uint32_t>(frontMostTimerNumber_) < numTimers()) {
        return frontMostTimerNumber_;
    }
    frontMostTimerNumber_ = static_cast<int32_t>(numTimers()) - 1;
    return frontMostTimerNumber_;
}

void tkTimerArray::setFrontMost(uint32_t n) {
    const auto number = static_cast<int32_t>(n);
    const std::string id = timerAt(number)->getID();
    const int32_t old = frontMostTimerNumber_;
    if (number != frontMostTimerNumber_) {
        frontMostTimerNumber_ = number;
        frontMostID_ = id;
        postFrontMostChanged(old, number);
        dirty_ = true;
        post();
    } else if (id != frontMostID_) {
        // Another timer took the number (a removal); the file needn't change.
        frontMostID_ = id;
        postFrontMostChanged(old, number);
    }
}

void tkTimerArray::setTimerOpen(bool open) {
    timerOpen_ = open;
    dirty_ = true;
    post();
}

void tkTimerArray::setGlobalDetailMode(bool mode) {
    globalDetailMode_ = mode;
    dirty_ = true;
    post();
}

void tkTimerArray::setDrawerOpen(bool open) {
    drawerOpen_ = open;
    dirty_ = true;
    post();
}

void tkTimerArray::setDirty(bool dirty) {
    dirty_ = dirty;
    if (dirty) {
        post();
    }
}

bool tkTimerArray::isDirty() const {
    return dirty_ || std::any_of(timers_.begin(), timers_.end(),
                                 [](const auto& controller) { return controller->isDirty(); });
}

void tkTimerArray::clearDirty() {
    for (const auto& controller : timers_) {
        controller->clearDirty();
    }
    dirty_ = false;
}

bool tkTimerArray::anyRunning() const {
    return std::any_of(timers_.begin(), timers_.end(),
                       [](const auto& controller) { return controller->isRunning(); });
}

void tkTimerArray::refreshAll() {
    for (const auto& controller : timers_) {
        controller->refreshTime();
    }
}

void tkTimerArray::showFront(bool bringForward) {
    if (timerOpen_) {
        showTimerInWindow(getFrontMost(), drawerOpen_, false);
        tkTimerWindow* window = windowForTimer(getFrontMost());
        window->getUI()->setDetailMode(globalDetailMode_);
        if (bringForward) {
            window->bringToFront();
        }
    }
    // Posted even with the window closed and nothing changed: listeners take it
    // as "look again".
    post();
}

void tkTimerArray::moveTimer(int32_t from, int32_t to) {
    const auto count = static_cast<int32_t>(numTimers());
    if (from < 0 || from >= count || to < 0 || to >= count) {
        throwIndexOutOfBounds();
    }
    auto moving = std::move(timers_[static_cast<size_t>(from)]);
    timers_.erase(timers_.begin() + from);
    timers_.insert(timers_.begin() + to, std::move(moving));
    for (int32_t i = std::min(from, to); i <= std::max(from, to); ++i) {
        timers_[static_cast<size_t>(i)]->setNumber(static_cast<uint32_t>(i));
    }
    // Posted even when from equals to.
    postFrontMostChanged(from, to);
    dirty_ = true;
    post();
}

void tkTimerArray::removeSelected(bool add) {
    const uint32_t count = numberOfSelectedTimerRows();
    // The last timer can't go: there is always one to show.
    if (count == 0 || count == numTimers()) {
        return;
    }
    removeTimers(selectedTimerRows(), add);
}

void tkTimerArray::releaseRemovedControllers() {
    std::vector<const tkTimerController*> held;
    for (const auto& window : windows_) {
        if (ItkTimerUI* ui = window->getUI()) {
            held.push_back(ui->getTimerController());
        }
    }
    std::erase_if(removed_, [&held](const auto& controller) {
        return std::find(held.begin(), held.end(), controller.get()) == held.end();
    });
}

void tkTimerArray::removeTimers(const std::vector<uint32_t>& numbers, bool add) {
    if (numbers.empty()) {
        return;
    }
    // Checked before anything changes, so a bad list loses nothing.
    std::vector<uint32_t> ascending = numbers;
    std::sort(ascending.begin(), ascending.end());
    ascending.erase(std::unique(ascending.begin(), ascending.end()), ascending.end());
    if (ascending.back() >= numTimers()) {
        throwIndexOutOfBounds();
    }
    releaseRemovedControllers();

    if (add) {
        // While the list is still whole, so the numbers mean what they said.
        for (uint32_t n : ascending) {
            timers_[n]->addToTimeSheet();
        }
    }
    // From the back, so that the earlier numbers stay valid.
    for (auto it = ascending.rbegin(); it != ascending.rend(); ++it) {
        removed_.push_back(std::move(timers_[*it]));
        timers_.erase(timers_.begin() + *it);
    }
    if (!timers_.empty()) {
        for (size_t i = 0; i < timers_.size(); ++i) {
            timers_[i]->setNumber(static_cast<uint32_t>(i));
        }
        // The timer that followed the first removed one, or the new last one.
        const uint32_t first = ascending.front();
        refreshFrontWindow(static_cast<int32_t>(first < numTimers() ? first : numTimers() - 1));
    }
    dirty_ = true;
    post();
}

void tkTimerArray::removeAll() {
    if (timers_.empty()) {
        return;
    }
    std::vector<uint32_t> all(numTimers());
    for (uint32_t i = 0; i < all.size(); ++i) {
        all[i] = i;
    }
    removeTimers(all, false);
}

std::string tkTimerArray::deletionList(const std::vector<uint32_t>& numbers) const {
    std::string text;
    for (uint32_t n : numbers) {
        const tkTimer* timer = timerAt(static_cast<int32_t>(n));
        text += timer->getTitle() + "--" + timer->getDuration()->toString() + "\n";
    }
    return text;
}

int32_t tkTimerArray::sortedTimerNumber(int32_t position) {
    return titleOrder_[position];
}

void tkTimerArray::rebuildTitleOrder() {
    std::map<std::string, std::vector<int32_t>> byTitle;
    for (size_t i = 0; i < timers_.size(); ++i) {
        byTitle[timers_[i]->getTimer()->getTitle()].push_back(static_cast<int32_t>(i));
    }
    titleOrder_.clear();
    int32_t position = 0;
    for (const auto& [title, numbers] : byTitle) {
        for (int32_t n : numbers) {
            titleOrder_[position++] = n;
        }
    }
}

std::unique_ptr<tkTagNode> tkTimerArray::toTag() const {
    auto node = std::make_unique<tkTagNode>(kArrayElement);
    for (const auto& controller : timers_) {
        node->addChild(controller->toTag());
    }
    node->addChild(kFrontMostKey, frontMostTimerNumber_);
    node->addChild(kTimerOpenKey, timerOpen_);
    node->addChild(kGlobalDetailModeKey, globalDetailMode_);
    node->addChild(kDrawerOpenKey, drawerOpen_);
    return node;
}

void tkTimerArray::fromTag(const tkTagNode& node) {
    isLoading_ = true;
    removeAll();

    const std::string clId = node.childText(kClIdKey, "");
    frontMostTimerNumber_ = 0;
    // Each added timer is shown as it comes, which moves the front number
    // along; what the file names as front is therefore kept apart here and
    // stored after the loop.
    int32_t loadedFront = 0;
    bool oldForm = false;
    int32_t t = 0;
    addingFromFile_ = true;
    // A timer that can't be read ends the load with an exception; later adds
    // must show their timer again.
    struct EndOfAdding {
        bool& flag;
        ~EndOfAdding() { flag = false; }
    } endOfAdding{addingFromFile_};
    for (int32_t i = 0; i < node.childCount(); ++i) {
        const tkTagNode* child = node.childAt(i);
        if (!isTimerElement(child->name())) {
            continue;
        }
        if (child->name() == kOldTimerElement) {
            oldForm = true;
        }
        tkTimerWindow* window = windowForTimer(i);
        createFromTag(*child, window);
        if (!clId.empty()) {
            const std::string id = child->childText(kIdKey, "");
            if (!id.empty() && id == clId) {
                loadedFront = t;
            }
        }
        ++t;
    }
    addingFromFile_ = false;
    if (!timers_.empty() && !tkNotificationCenter::instance().isSuspended()) {
        // Where showing timer after timer would have left the window.
        refreshFrontWindow(static_cast<int32_t>(numTimers()) - 1);
    }
    rebuildTitleOrder();

    frontMostTimerNumber_ = static_cast<int32_t>(node.childLong(kFrontMostKey, loadedFront));
    // The old form counted the front timer from 1. Wrapped, so that the lowest
    // number in a damaged file lands out of range instead of overflowing.
    if (oldForm) {
        frontMostTimerNumber_ =
            static_cast<int32_t>(static_cast<uint32_t>(frontMostTimerNumber_) - 1U);
    }
    timerOpen_ = node.childBool(kTimerOpenKey, timerOpen_);
    globalDetailMode_ = node.childBool(kGlobalDetailModeKey, globalDetailMode_);
    drawerOpen_ = node.childBool(kDrawerOpenKey, drawerOpen_);

    if (static_cast<uint32_t>(frontMostTimerNumber_) < numTimers()) {
        showTimerInWindow(frontMostTimerNumber_, false, false);
    }
    isLoading_ = false;
}
