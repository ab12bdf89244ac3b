#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/ItkXMLCreatable.h"
#include "foundation/tkNotificationCenter.h"

// The application's settings: a few flags and paths. Its tagged form also
// carries the known billing codes and the default record, so that one file
// holds everything the user configured. It never writes itself: a change sets
// the dirty flag and posts "Chronolet Plus preferences changed.", and the data
// layer answers by saving.
class tkPreferences : public ItkXMLCreatable, public tkObserver {
  public:
    static tkPreferences& instance();

    bool isDirty() const { return _dirty; }
    // true posts every time, even when already dirty; false posts nothing.
    void setDirty(bool value);

    bool isSingleWindowMode() const { return _singleWindowMode; }
    // Posts only when the value changes.
    void setSingleWindowMode(bool value);

    bool isTimeSheetOpen() const { return _timeSheetOpen; }
    // Posts even when the value doesn't change, unlike the other two flags;
    // that asymmetry is deliberate and other code relies on the post.
    void setTimeSheetOpen(bool value);

    bool isTimeSheetWorldWritable() const { return _timeSheetWorldWritable; }
    // Posts only when the value changes. Stored and shown; it deliberately
    // has no effect on the file's permissions.
    void setTimeSheetWorldWritable(bool value);

    // Asking about time away: while a timer runs and the user has been away this many minutes,
    // the application asks on return what to do with the idle time. The check can be turned off
    // and keeps its minutes for when it is turned on again. Both setters post only on a change;
    // minutes are kept within kMinIdleMinutes..kMaxIdleMinutes.
    static constexpr int32_t kDefaultIdleMinutes = 10;
    static constexpr int32_t kMinIdleMinutes = 1;
    static constexpr int32_t kMaxIdleMinutes = 24 * 60;
    bool isIdleCheckOn() const { return _idleCheckOn; }
    void setIdleCheckOn(bool value);
    int32_t idleMinutes() const { return _idleMinutes; }
    void setIdleMinutes(int32_t minutes);
    // The minutes while the check is on, 0 while it is off.
    int32_t idleThresholdMinutes() const { return _idleCheckOn ? _idleMinutes : 0; }

    // A subtotal after each group of equal sort key, in the printed report and in the time sheet
    // window; both off by default, so that the plain report stays as it always was. The setters
    // post only on a change.
    bool isReportSubtotals() const { return _reportSubtotals; }
    void setReportSubtotals(bool value);
    bool isSheetSubtotals() const { return _sheetSubtotals; }
    void setSheetSubtotals(bool value);

    // Always the default place: the timers file is not in the tagged form.
    std::string timersFile() const { return _timersFile; }
    std::string timeSheetFile() const { return _timeSheetFile; }

    // With moveFile the present time sheet file is moved to `path` first;
    // a failed move returns false and changes nothing. Without it the file is
    // left alone (used when the user opens another sheet).
    bool setTimeSheetFile(const std::string& path, bool moveFile);
    bool setSaveLocation(const std::string& path) { return setTimeSheetFile(path, true); }

    // Moves the time sheet back to its default place and then resets every
    // value the object holds, not only the location.
    bool resetSaveLocation();

    // The reset of resetSaveLocation without the move: every value back to
    // its default, then dirty and a post. For a caller that has already put
    // the time sheet file in its default place by other means.
    void restoreDefaults();

    // The fixed place of the preferences file.
    std::string preferencesFile() const;

    // The sort key read from the file: a field name or "off" (empty before
    // any read). Validated and kept; nothing else consults it.
    std::string sortBy() const { return _sortBy; }

    std::unique_ptr<tkTagNode> toTag() const override;
    void fromTag(const tkTagNode& node) override;

    ~tkPreferences() override;

    tkPreferences(const tkPreferences&) = delete;
    tkPreferences& operator=(const tkPreferences&) = delete;

  private:
    tkPreferences();

    void setDefaults();
    void markDirtyAndPost();

    bool _dirty = false;
    bool _singleWindowMode = true;
    std::string _timersFile;
    bool _timeSheetOpen = true;
    bool _timeSheetWorldWritable = true;
    std::string _timeSheetFile;
    std::string _sortBy;
    bool _idleCheckOn = true;
    int32_t _idleMinutes = kDefaultIdleMinutes;
    bool _reportSubtotals = false;
    bool _sheetSubtotals = false;
};
