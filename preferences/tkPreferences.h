#pragma once

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
};
