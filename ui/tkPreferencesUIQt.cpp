#include "ui/tkPreferencesUIQt.h"

#include <QFileDialog>
#include <QSignalBlocker>
#include <QWidget>

#include "foundation/tkFile.h"
#include "preferences/tkPreferences.h"
#include "shell/tkTimeSheetLocation.h"
#include "ui/tkIdleSources.h"
#include "ui/tkNibLoader.h"
#include "ui_preferences.h"

namespace {

const char* const kMoveFailedTitle = "Could not move Time Sheet";
// Two blanks after the question mark, deliberately.
const char* const kMoveFailedMessage =
    "Could not move time sheet file to that location; perhaps you don't have write privileges "
    "in that directory?  Please try changing permissions for that directory using the Finder, "
    "or try again in a different directory.";

const char* const kIdleUnavailableText =
    "Idle time can't be told on this desktop: it offers neither the X11 screen saver extension "
    "nor an idle time service on the session bus.";

}  // namespace

tkPreferencesUIQt::tkPreferencesUIQt(QObject* parent)
    : QObject(parent),
      _window(std::make_unique<QWidget>()),
      _form(std::make_unique<Ui::preferences>()),
      _errors(_window.get()) {
    _form->setupUi(_window.get());
    // Wide enough for the 36 characters that a shortened location can take.
    _form->saveTF->setMinimumWidth(_form->saveTF->fontMetrics().averageCharWidth() * 40);
    _window->adjustSize();

    // One panel, kept and re-used for every choice of location.
    _sPanel = new QFileDialog(_window.get());
    _sPanel->setObjectName(QStringLiteral("savePanel"));
    _sPanel->setAcceptMode(QFileDialog::AcceptSave);
    _sPanel->setNameFilter(QStringLiteral("Text files (*.txt)"));
    _sPanel->setDefaultSuffix(QStringLiteral("txt"));
    // A move never replaces a file, so there is nothing to confirm: an
    // existing file is refused with the error.
    _sPanel->setOption(QFileDialog::DontConfirmOverwrite);
    // Taken as the panel accepts: what it reports once closed can already
    // have moved on with the folder it was still loading.
    connect(_sPanel, &QFileDialog::fileSelected, this,
            [this](const QString& file) { _chosenFile = file; });

    connect(_form->setButton, &QPushButton::clicked, this, &tkPreferencesUIQt::displaySavePanel);
    connect(_form->singleWindowCheckBox, &QCheckBox::clicked, this,
            &tkPreferencesUIQt::setSingleWindowMode);
    connect(_form->timesheetProtected, &QCheckBox::clicked, this,
            &tkPreferencesUIQt::setTimesheetProtectedValue);
    connect(_form->restoreDefaultsButton, &QPushButton::clicked, this,
            &tkPreferencesUIQt::restoreDefaults);
    connect(_form->closeButton, &QPushButton::clicked, this, &tkPreferencesUIQt::dismissWindow);
    connectExtras();
    refresh();
}

tkPreferencesUIQt::~tkPreferencesUIQt() = default;

void tkPreferencesUIQt::show() {
    _window->show();
    _window->raise();
    _window->activateWindow();
}

void tkPreferencesUIQt::dismissWindow() {
    _window->close();
}

void tkPreferencesUIQt::refresh() {
    const tkPreferences& preferences = tkPreferences::instance();
    setTextFieldFromSaveLocation();
    _form->singleWindowCheckBox->setChecked(preferences.isSingleWindowMode());
    // Inverted on purpose: a protected sheet is one that isn't world-writable.
    _form->timesheetProtected->setChecked(!preferences.isTimeSheetWorldWritable());
    _form->idleCheckBox->setEnabled(_idleDetectable);
    _form->idleCheckBox->setChecked(_idleDetectable && preferences.isIdleCheckOn());
    const QSignalBlocker quiet(_form->idleMinutesSpin);
    _form->idleMinutesSpin->setValue(preferences.idleMinutes());
    _form->idleMinutesSpin->setEnabled(_idleDetectable && preferences.isIdleCheckOn());
    _form->reportSubtotalsCheckBox->setChecked(preferences.isReportSubtotals());
    _form->sheetSubtotalsCheckBox->setChecked(preferences.isSheetSubtotals());
    // Only where there is a time sheet window to show them.
    _form->sheetSubtotalsCheckBox->setVisible(tkNibLoader::hasTimeSheetWindow());
}

void tkPreferencesUIQt::displaySavePanel() {
    // Set afresh each time, as the panel is shared.
    _sPanel->setLabelText(QFileDialog::Accept, QStringLiteral("Set"));
    const std::string location = tkPreferences::instance().timeSheetFile();
    const std::string directory = tkFile::deletingLastPathComponent(location);
    if (panelMayStartIn(directory)) {
        _sPanel->setDirectory(QString::fromStdString(directory));
    }
    _sPanel->selectFile(QString::fromStdString(tkFile::lastPathComponent(location)));
    _chosenFile.clear();
    savePanelDidEnd(_sPanel->exec());
}

void tkPreferencesUIQt::savePanelDidEnd(int result) {
    if (result != QDialog::Accepted || _chosenFile.isEmpty()) {
        return;
    }
    setSaveLocation(_chosenFile);
}

void tkPreferencesUIQt::setSaveLocation(const QString& path) {
    if (moveTimeSheet(path.toStdString()) == 0) {
        setTextFieldFromSaveLocation();
        return;
    }
    _errors.show(QString::fromLatin1(kMoveFailedTitle), QString::fromLatin1(kMoveFailedMessage));
}

void tkPreferencesUIQt::setTextFieldFromSaveLocation() {
    const std::string location = tkPreferences::instance().timeSheetFile();
    _form->saveTF->setText(QString::fromStdString(shortenedLocation(location)));
    // The whole path, for when the field can't show it.
    _form->saveTF->setToolTip(QString::fromStdString(location));
}

void tkPreferencesUIQt::setSingleWindowMode() {
    tkPreferences::instance().setSingleWindowMode(_form->singleWindowCheckBox->isChecked());
}

void tkPreferencesUIQt::setTimesheetProtectedValue() {
    tkPreferences::instance().setTimeSheetWorldWritable(!_form->timesheetProtected->isChecked());
}

void tkPreferencesUIQt::connectExtras() {
    // Idle time can only be asked about where the desktop tells it; elsewhere the setting is
    // shown disabled with the reason, and kept for a desktop that does.
    const std::unique_ptr<ItkIdleSource> source = desktopIdleSource();
    _idleDetectable = source != nullptr;
    _form->idleUnavailableLabel->setText(QString::fromLatin1(kIdleUnavailableText));
    _form->idleUnavailableLabel->setVisible(!_idleDetectable);
    _form->idleCheckBox->setToolTip(_idleDetectable ? QStringLiteral("Idle time comes from ") +
                                                          QString::fromStdString(source->name()) +
                                                          QLatin1Char('.')
                                                    : QString::fromLatin1(kIdleUnavailableText));
    connect(_form->idleCheckBox, &QCheckBox::clicked, this, [this](bool checked) {
        tkPreferences::instance().setIdleCheckOn(checked);
        refresh();
    });
    connect(_form->idleMinutesSpin, &QSpinBox::valueChanged, this,
            [](int minutes) { tkPreferences::instance().setIdleMinutes(minutes); });
    connect(_form->reportSubtotalsCheckBox, &QCheckBox::clicked, this,
            [](bool checked) { tkPreferences::instance().setReportSubtotals(checked); });
    connect(_form->sheetSubtotalsCheckBox, &QCheckBox::clicked, this,
            [](bool checked) { tkPreferences::instance().setSheetSubtotals(checked); });
}

void tkPreferencesUIQt::restoreDefaults() {
    if (restoreDefaultLocation() != 0) {
        // The model answers a failed move by changing nothing; saying so
        // beats a button that silently does nothing.
        _errors.show(QString::fromLatin1(kMoveFailedTitle),
                     QString::fromLatin1(kMoveFailedMessage));
    }
    refresh();
}
