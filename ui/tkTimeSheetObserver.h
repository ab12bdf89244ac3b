#pragma once

#include "foundation/tkObserver.h"

class tkTimeSheet;
class tkTSUIQt;

// The bridge from the sheet's notifications to its window. A new bridge shows the default
// record, the rows and the counters at once; selection and undo titles wait for the sheet's
// next post of them.
//
// A compound edit's parts refresh nothing: its end brings one refresh of the table, one
// hand-over of the selection and one update of the titles. The same holds, for the table,
// the selection and the counters, while the sheet is in any change of many steps (the undo
// of a compound, a load, a cell edit with its re-sort): the window catches up once, when the
// change ends, instead of once for every part. The window draws only after the whole event
// either way, so the user sees the same.
class tkTimeSheetObserver : public tkObserver {
  public:
    tkTimeSheetObserver(tkTSUIQt& ui, tkTimeSheet& sheet);
    ~tkTimeSheetObserver();
    tkTimeSheetObserver(const tkTimeSheetObserver&) = delete;
    tkTimeSheetObserver& operator=(const tkTimeSheetObserver&) = delete;

    void onDirty();
    void onDefaultRecordChanged();
    void onSelectionChanged();
    void onSortByChanged();
    void onCompoundBegan();
    void onCompoundEnded();
    void onUndoStackChanged();
    void onBulkChangeEnded();
    void onPreferencesChanged();

    // Fills the counters: the number of entries and their total, of the selected rows when
    // two or more are selected and of the whole sheet otherwise, and the delete button's
    // title, which reads "Delete Entry" for more than one row and "Delete Entries" for one
    // or none. That looks reversed and is meant to stay so.
    void updateCounts();

    bool inCompoundEdit() const { return _inCompoundEdit; }

  private:
    // Whether the sheet is in a change of many steps; if so the window catches up at its end.
    bool heldBack();

    tkTSUIQt& _ui;
    tkTimeSheet& _sheet;
    bool _inCompoundEdit = false;
    // Something changed while held back.
    bool _behind = false;
};
