#include "records/tkPreferencesLink.h"

#include "preferences/tkPreferences.h"

// The preferences file carries the known code lists, so any change to them makes
// the preferences dirty, and the save handler writes the file within the post.
void markPreferencesDirty() {
    tkPreferences::instance().setDirty(true);
}
