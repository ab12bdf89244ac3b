#pragma once

#include <functional>

class tkException;

// How the core tells the user about a failure that no caller can hand to a
// window: a save that failed inside a post, long after the action that
// caused it returned. A front end installs a reporter that shows the error
// (without waiting for an answer); without one, the error goes to standard
// error, so that nothing fails unseen in a build without windows.
using tkErrorReporter = std::function<void(const tkException& error)>;

// An empty reporter restores the standard error one.
void setErrorReporter(tkErrorReporter reporter);
// The installed reporter; empty when errors go to standard error.
const tkErrorReporter& errorReporter();

// Hands the error to the installed reporter. A reporter that throws is
// contained: reporting must never become a second failure.
void reportError(const tkException& error);
