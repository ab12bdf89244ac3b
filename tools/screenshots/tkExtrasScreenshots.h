#pragma once

#include <QString>

class tkTrayIconQt;

// Renders the idle time question, the tray icon's menu and a report page with subtotals to PNG
// files in `folder`, over the sample timers of the screenshot run. Each answers whether its file
// was written.
bool screenshotIdleQuestion(const QString& folder);
bool screenshotTrayMenu(const QString& folder, tkTrayIconQt* tray);
bool screenshotReportSubtotals(const QString& folder);
