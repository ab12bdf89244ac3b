#pragma once

#include <QString>

// Renders the support windows to PNG files in `folder`, each in a state that
// shows what it is for. The core must be running over a scratch home (a file
// manager installed, no handlers attached), and QSettings pointed at a
// scratch folder: the sample data must not reach a user's files. Each
// answers whether its file was written.
bool screenshotPreferences(const QString& folder);
bool screenshotBillCodes(const QString& folder);
bool screenshotAddCodesSheet(const QString& folder);
bool screenshotUpdateCheck(const QString& folder);
