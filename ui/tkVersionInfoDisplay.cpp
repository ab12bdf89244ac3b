#include "ui/tkVersionInfoDisplay.h"

#include <QLabel>

#include "ui/tkVersionInfo.h"

tkVersionInfoDisplay::tkVersionInfoDisplay(QLabel* displayTextField) {
    if (displayTextField != nullptr) {
        displayTextField->setText(text());
    }
}

QString tkVersionInfoDisplay::text() {
    const tkVersionInfo mine = tkVersionInfo::myVersionInfo();
    return QStringLiteral("version %1 - build %2")
        .arg(mine.versionString(), QString::number(mine.buildNumber()));
}
