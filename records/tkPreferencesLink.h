#pragma once

// The one call from the records layer up to the preferences: the known code lists changed
// and the preferences file, which carries them, must be saved.
void markPreferencesDirty();
