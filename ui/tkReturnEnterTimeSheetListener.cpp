#include "ui/tkReturnEnterTimeSheetListener.h"

#include <QKeyEvent>

bool tkReturnEnterTimeSheetListener::performKeyEquivalent(const QKeyEvent& event) {
    // Deliberately blind to modifiers: Shift+Return adds an entry too.
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) {
        return false;
    }
    click();
    return true;
}
