#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/ItkXMLCreatable.h"

class tkTagNode;
class tkTimer;
class tkTimerController;
class tkTimerWindow;

// The process-wide list of timers, and the keeper of what the timer window
// must look like next time (front timer, window open, details and drawer
// shown). It is the root object of the timers file.
//
// A timer's number is its index here, from 0, and nothing else: removals and
// moves renumber the rest, so a number is not an identity.
//
// "Timer became dirty." with the array as sender: the array's own state, the
// set of timers or their order changed.
class tkTimerArray : public ItkXMLCreatable {
  public:
    // Data of "Note: frontmost timer changed.": the address of one of these,
    // holding (old number, new number), valid during the post only.
    using FrontMostChange = std::shared_ptr<std::pair<int32_t, int32_t>>;

    static tkTimerArray& instance();

    ~tkTimerArray() override;
    tkTimerArray(const tkTimerArray&) = delete;
    tkTimerArray& operator=(const tkTimerArray&) = delete;

    // Children "timer <n>" in list order, then "frontMostTimerNumber",
    // "timerOpen", "globalDetailMode", "drawerOpen".
    std::unique_ptr<tkTagNode> toTag() const override;
    // Replaces every timer by those of the node. Also reads the old form: timer
    // children named just "timer", a frontmost number counted from 1, and
    // "cl_id". The dirty flag is left as the clearing made it.
    void fromTag(const tkTagNode& node) override;

    uint32_t numTimers() const { return static_cast<uint32_t>(timers_.size()); }
    uint32_t numWindows() const { return static_cast<uint32_t>(windows_.size()); }

    // Appends, numbers it, shows it (unless notifications are suspended) and
    // rebuilds the title order. Sets no dirty flag. While fromTag reads a file
    // it only appends and numbers: the showing and the title order are done
    // once behind the last timer.
    void addController(std::unique_ptr<tkTimerController> controller);
    void addWindow(std::unique_ptr<tkTimerWindow> window);

    // Throw tkException "IndexOutOfBounds" when out of range.
    tkTimerController* controllerAt(int32_t index) const;
    tkTimer* timerAt(int32_t index) const;
    // The window that shows timer n; creates the first window when there is
    // none. In single-window mode always window 0.
    tkTimerWindow* windowForTimer(int32_t n);

    // The front timer, clamped to the list: an empty list yields -1, which is
    // then also stored.
    int32_t getFrontMost();
    // Posts "Note: frontmost timer changed." when the number or the timer's id
    // changed, and marks the array dirty only when the number did.
    void setFrontMost(uint32_t n);

    // Each setter stores, sets the dirty flag and posts, changed or not.
    bool isTimerOpen() const { return timerOpen_; }
    void setTimerOpen(bool open);
    bool isGlobalDetailMode() const { return globalDetailMode_; }
    void setGlobalDetailMode(bool mode);
    bool isDrawerOpen() const { return drawerOpen_; }
    void setDrawerOpen(bool open);

    // Posts only when given true.
    void setDirty(bool dirty);
    // The array's own flag or any timer's.
    bool isDirty() const;
    // Clears every flag; posts nothing.
    void clearDirty();

    bool anyRunning() const;
    // refreshTime on every controller, in list order: the ticker's work.
    void refreshAll();

    // Shows what the flags ask for; always posts "Timer became dirty." without
    // setting the dirty flag.
    void showFront(bool bringForward);
    // Moves one timer, renumbering those between. Throws "IndexOutOfBounds".
    void moveTimer(int32_t from, int32_t to);

    // Removes the timers selected in the list of window 0. Refused (silently)
    // for an empty selection and for a selection of every timer.
    void removeSelected(bool add);
    // `numbers` ascending. With `add`, each named timer goes to the time sheet
    // first, while the list is still whole.
    void removeTimers(const std::vector<uint32_t>& numbers, bool add);
    void removeAll();

    // For each number: title, "--", duration text, line break.
    std::string deletionList(const std::vector<uint32_t>& numbers) const;

    // Timer number at an alphabetical position; an unknown position is added
    // with the value 0.
    int32_t sortedTimerNumber(int32_t position);
    void rebuildTitleOrder();

    // Read-only views, for the file and for tests.
    const std::string& getFrontMostID() const { return frontMostID_; }
    bool isLoading() const { return isLoading_; }
    const std::map<int32_t, int32_t>& getTitleOrder() const { return titleOrder_; }

  private:
    tkTimerArray();
    void post();
    void postFrontMostChanged(int32_t oldNumber, int32_t newNumber);
    void releaseRemovedControllers();

    std::vector<std::unique_ptr<tkTimerController>> timers_;
    std::vector<std::unique_ptr<tkTimerWindow>> windows_;
    bool dirty_ = false;
    int32_t frontMostTimerNumber_ = 0;
    std::string frontMostID_;
    bool timerOpen_ = true;
    bool globalDetailMode_ = true;
    bool drawerOpen_ = true;
    bool isLoading_ = false;
    // Set while fromTag adds the timers of a file; see addController.
    bool addingFromFile_ = false;
    std::map<int32_t, int32_t> titleOrder_;

    // A removed controller is not destroyed at once: the user interface may
    // still hold it until it is shown another timer.
    std::vector<std::unique_ptr<tkTimerController>> removed_;
};
