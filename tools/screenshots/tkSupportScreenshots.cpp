#include "tools/screenshots/tkSupportScreenshots.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTableView>
#include <QWidget>

#include "shell/tkBillCodeController.h"
#include "ui/tkBillCodeWindow.h"
#include "ui/tkPreferencesUIQt.h"
#include "ui/tkUpdateCheck.h"
#include "ui/tkVersionInfo.h"

namespace {

bool save(QWidget& widget, const QString& folder, const QString& name) {
    widget.show();
    QApplication::processEvents();
    return widget.grab().save(QDir(folder).filePath(name), "PNG");
}

void addSampleCodes() {
    tkBillCodeController::addCodes("employee", "ab\ncd\njs\nmk\nrt");
    tkBillCodeController::addCodes("job number", "2024-001\n2024-002\n2024-017\nACME-7\nHARBOR");
    tkBillCodeController::addCodes("fee code", "cons\ndev\nmeet\ntrvl");
}

}  // namespace

bool screenshotPreferences(const QString& folder) {
    tkPreferencesUIQt preferences;
    return save(*preferences.window(), folder, QStringLiteral("preferences.png"));
}

bool screenshotBillCodes(const QString& folder) {
    addSampleCodes();
    tkBillCodeWindow window;
    window.refresh();
    auto* jobs = window.window()->findChild<QTableView*>(QStringLiteral("jobTable"));
    jobs->selectRow(2);
    return save(*window.window(), folder, QStringLiteral("billcodes.png"));
}

bool screenshotAddCodesSheet(const QString& folder) {
    tkBillCodeWindow window;
    window.show();
    QMetaObject::invokeMethod(window.window()->findChild<QObject*>(QStringLiteral("feeAddButton")),
                              "click");
    auto* sheet = window.window()->findChild<QDialog*>(QStringLiteral("bcaWindow"));
    sheet->findChild<QPlainTextEdit*>()->setPlainText(QStringLiteral("RSCH\nTRNG\nSUPP"));
    return save(*sheet, folder, QStringLiteral("billcodes-add.png"));
}

bool screenshotUpdateCheck(const QString& folder) {
    const QString feed = QDir(folder).filePath(QStringLiteral("feed.xml"));
    QFile file(feed);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(QStringLiteral("<versionInfo><versionString>0.2.0</versionString>"
                              "<buildNumber>%1</buildNumber></versionInfo>")
                   .arg(tkVersionInfo::myVersionInfo().buildNumber() + 1)
                   .toUtf8());
    file.close();
    QSettings().setValue(tkVersionInfo::kFeedUrlKey, QUrl::fromLocalFile(feed).toString());
    tkUpdateCheck check;
    check.check();
    QFile::remove(feed);
    return save(*check.updateResultsWindow(), folder, QStringLiteral("update-check.png"));
}
