#pragma once

// The type through which handlers are registered with the notification
// center. It carries nothing: its address is the identity that
// removeObserver compares. An observer must remove every registration it made
// before it is destroyed; the center does not learn of its death.
class tkObserver {};
