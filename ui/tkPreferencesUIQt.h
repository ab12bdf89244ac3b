#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "ui/tkWindowErrors.h"

class QFileDialog;
class QWidget;
namespace Ui {
class preferences;
}

// The preferences window: where the time sheet file lies (shortened to fit,
// with Set… to move it), single window mode, the time sheet's protection, the
// question about idle time, subtotals by group, and Restore Defaults. Every value lives in
// tkPreferences; this shows them and forwards the user's changes. Built from the "preferences"
// form.
//
// It is refreshed once when built and otherwise only by refresh(): showing
// it again doesn't re-read the preferences.
class tkPreferencesUIQt : public QObject {
    Q_OBJECT

  public:
    explicit tkPreferencesUIQt(QObject* parent = nullptr);
    ~tkPreferencesUIQt() override;

    QWidget* window() const { return _window.get(); }
    // Where "Could not move Time Sheet" is shown.
    tkWindowErrors& errors() { return _errors; }

    // Brings the window to the front.
    void show();
    // Shows the location and every setting as the preferences hold them; the
    // protection box is ticked when the sheet is not world-writable, and the
    // idle setting is disabled where the desktop can't tell idle time.
    void refresh();

  public Q_SLOTS:
    void dismissWindow();
    // Runs the save panel (application-modal) and moves the time sheet to
    // the chosen file.
    void displaySavePanel();
    // Moves the time sheet to `path`; on failure shows why, and the field
    // keeps the old place.
    void setSaveLocation(const QString& path);
    void setTextFieldFromSaveLocation();
    void setSingleWindowMode();
    void setTimesheetProtectedValue();
    // The location and every other preference back to the defaults.
    void restoreDefaults();

  private:
    void savePanelDidEnd(int result);
    void connectExtras();

    std::unique_ptr<QWidget> _window;
    std::unique_ptr<Ui::preferences> _form;
    tkWindowErrors _errors;
    QFileDialog* _sPanel = nullptr;
    QString _chosenFile;
    bool _idleDetectable = false;
};
