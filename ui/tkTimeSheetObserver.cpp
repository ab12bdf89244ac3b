#include "ui/tkTimeSheetObserver.h"

#include <QString>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "preferences/tkPreferences.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDuration.h"
#include "records/tkRecordFields.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"
#include "ui/tkTSUIQt.h"

namespace {

struct Registration {
    const char* name;
    void (tkTimeSheetObserver::*handler)();
    enum class From { Sheet, Anyone, UndoManager } from;
};

// In this order.
const Registration kRegistrations[] = {
    {kTimeSheetBecameDirty, &tkTimeSheetObserver::onDirty, Registration::From::Sheet},
    {kDefaultRecordChanged, &tkTimeSheetObserver::onDefaultRecordChanged,
     Registration::From::Anyone},
    {kTimeSheetSelectionChanged, &tkTimeSheetObserver::onSelectionChanged,
     Registration::From::Sheet},
    {kTimeSheetSortByChanged, &tkTimeSheetObserver::onSortByChanged, Registration::From::Sheet},
    {kTimeSheetBeganCompoundEdit, &tkTimeSheetObserver::onCompoundBegan, Registration::From::Sheet},
    {kTimeSheetEndedCompoundEdit, &tkTimeSheetObserver::onCompoundEnded, Registration::From::Sheet},
    {kUndoStackChanged, &tkTimeSheetObserver::onUndoStackChanged, Registration::From::UndoManager},
    {kTimeSheetBulkChangeEnded, &tkTimeSheetObserver::onBulkChangeEnded, Registration::From::Sheet},
    {kPreferencesChanged, &tkTimeSheetObserver::onPreferencesChanged, Registration::From::Anyone},
};

const void* senderOf(const Registration& registration, tkTimeSheet& sheet) {
    switch (registration.from) {
        case Registration::From::Sheet:
            return &sheet;
        case Registration::From::UndoManager:
            return &sheet.undoManager();
        case Registration::From::Anyone:
            break;
    }
    return nullptr;
}

}  // namespace

tkTimeSheetObserver::tkTimeSheetObserver(tkTSUIQt& ui, tkTimeSheet& sheet)
    : _ui(ui), _sheet(sheet) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    for (const Registration& each : kRegistrations) {
        center.addObserver(
            this, [this, handler = each.handler](const tkNotification&) { (this->*handler)(); },
            each.name, senderOf(each, sheet));
    }
    onDefaultRecordChanged();
    _ui.showSubtotals(tkPreferences::instance().isSheetSubtotals());
    _ui.refreshTable();
    updateCounts();
}

tkTimeSheetObserver::~tkTimeSheetObserver() {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    for (const Registration& each : kRegistrations) {
        center.removeObserver(this, each.name, senderOf(each, _sheet));
    }
}

bool tkTimeSheetObserver::heldBack() {
    if (!_sheet.isInBulkChange()) {
        return false;
    }
    _behind = true;
    return true;
}

void tkTimeSheetObserver::onDirty() {
    if (_inCompoundEdit || heldBack()) {
        return;
    }
    _ui.refreshTable();
    updateCounts();
}

void tkTimeSheetObserver::onDefaultRecordChanged() {
    // All six are read before the first is shown.
    const auto shown = [](const char* field) {
        return QString::fromStdString(getDefaultField(field)->toDisplayString());
    };
    const QString date = shown(kFieldDate);
    const QString duration = shown(kFieldDuration);
    const QString description = shown(kFieldDescription);
    const QString employee = shown(kFieldEmployee);
    const QString feeCode = shown(kFieldFeeCode);
    const QString jobNumber = shown(kFieldJobNumber);
    _ui.setDateString(date);
    _ui.setDurationString(duration);
    _ui.setDescriptionString(description);
    _ui.setEmployeeString(employee);
    _ui.setFeeCodeString(feeCode);
    _ui.setJobNumberString(jobNumber);
}

void tkTimeSheetObserver::onSelectionChanged() {
    if (_inCompoundEdit || heldBack()) {
        return;
    }
    _ui.setSelection(*_sheet.selection());
    updateCounts();
}

void tkTimeSheetObserver::onSortByChanged() {
    _ui.refreshSortBy();
    // The groups follow the key: the subtotal bands move even where no row does.
    if (!_inCompoundEdit && !heldBack()) {
        _ui.refreshTable();
    }
}

void tkTimeSheetObserver::onPreferencesChanged() {
    _ui.showSubtotals(tkPreferences::instance().isSheetSubtotals());
}

void tkTimeSheetObserver::onCompoundBegan() {
    _inCompoundEdit = true;
}

void tkTimeSheetObserver::onCompoundEnded() {
    _inCompoundEdit = false;
    // The compound's own change of many steps is still open here; what it held back is
    // caught up now, at once.
    _behind = false;
    _ui.refreshTable();
    updateCounts();
    _ui.setSelection(*_sheet.selection());
    updateCounts();
    onUndoStackChanged();
}

void tkTimeSheetObserver::onUndoStackChanged() {
    if (_inCompoundEdit) {
        return;
    }
    tkUndoManager& undo = _sheet.undoManager();
    _ui.setUndoTitle(QString::fromStdString(undo.getUndoPresentationName()));
    _ui.setRedoTitle(QString::fromStdString(undo.getRedoPresentationName()));
}

void tkTimeSheetObserver::onBulkChangeEnded() {
    if (!_behind || _inCompoundEdit) {
        return;
    }
    _behind = false;
    _ui.refreshTable();
    _ui.setSelection(*_sheet.selection());
    updateCounts();
}

void tkTimeSheetObserver::updateCounts() {
    const uint32_t selected = _sheet.selectedRowCount();
    const bool ofSelection = selected >= 2;
    const uint32_t n = ofSelection ? selected : _sheet.rowCount();
    _ui.setEntryCountString(QString::number(n));
    _ui.setTotalDurationString(
        QString::fromStdString(_sheet.totalDuration(ofSelection)->toString()));
    _ui.setDeleteButtonText(n > 1);
}
