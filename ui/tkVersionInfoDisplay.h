#pragma once

#include <QString>

class QLabel;

// The application's own version as the About window shows it:
// "version <text> - build <number>", from the version file in the resources.
class tkVersionInfoDisplay {
  public:
    explicit tkVersionInfoDisplay(QLabel* displayTextField);

    static QString text();
};
