#pragma once

#include <QObject>
#include <QUrl>
#include <memory>

class QDialog;
class QLabel;
class QPushButton;
class QWidget;

// The update check that the user asks for: compares the build number of the
// feed's version file with the application's own and says what it found in
// a small modal results window. Nothing runs by itself and nothing is kept
// between checks; the download is left to the browser.
class tkUpdateCheck : public QObject {
    Q_OBJECT

  public:
    explicit tkUpdateCheck(QObject* parent = nullptr);
    ~tkUpdateCheck() override;

    // The comparison and the results window's four variable parts (text,
    // both buttons, what downloading opens), without showing the window.
    // Holds the caller for at most the feed's time-out.
    void check();

    QDialog* updateResultsWindow() const { return _updateResultsWindow.get(); }
    bool updatesExist() const { return _updatesExist; }
    const QUrl& updateURL() const { return _updateURL; }

  public Q_SLOTS:
    // check(), then the results window, modally.
    void checkForUpdates();
    // The default button: closes the window; with a newer version found,
    // opens its download address in the user's browser.
    void downloadUpdate();
    // The second button: closes the window.
    void cancelUpdate();

  private:
    std::unique_ptr<QDialog> _updateResultsWindow;
    QLabel* _updateResultsTextField = nullptr;
    QPushButton* _defaultButton = nullptr;
    QPushButton* _cancelButton = nullptr;
    bool _updatesExist = false;
    QUrl _updateURL;
};
