#pragma once

#include <QPushButton>

class QKeyEvent;

// A button that Return and Enter press as well as a click: the window hands it the key
// presses of its entry fields and its table, and the button takes Return and Enter for
// itself, modifier keys or not.
class tkReturnEnterTimeSheetListener : public QPushButton {
    Q_OBJECT

  public:
    using QPushButton::QPushButton;

    // Clicks the button and answers true for Return or Enter, whatever modifier keys are
    // down; any other key is left alone.
    bool performKeyEquivalent(const QKeyEvent& event);
};
