#include "records/tkPreferencesLink.h"

// Nothing to mark until the preferences model is linked in; the known lists call this on
// every change, so connecting it here is all the preferences need.
void markPreferencesDirty() {}
