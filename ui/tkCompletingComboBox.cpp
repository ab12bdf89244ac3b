#include "ui/tkCompletingComboBox.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

#include "ui/tkKRIComboBoxDataSource.h"

tkCompletingComboBox::tkCompletingComboBox(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // The box's own completer would pick rows and rank matches; completion
    // follows the code list's order instead (userTyped).
    setCompleter(nullptr);
    // The box's width must not come from its items: measuring every code of a
    // long list (one per job ever billed) would cost each window its opening.
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(6);
    connect(lineEdit(), &QLineEdit::textEdited, this, &tkCompletingComboBox::userTyped);
    // Keys reach the line edit through the box or, from a test, directly.
    lineEdit()->installEventFilter(this);
    connect(this, &QComboBox::textActivated, this, [this] { Q_EMIT textEditedByUser(); });
}

void tkCompletingComboBox::setDataSource(tkKRIComboBoxDataSource* source) {
    source_ = source;
    const QString keep = text();
    setModel(source);
    setText(keep);
}

QString tkCompletingComboBox::text() const {
    return lineEdit()->text();
}

void tkCompletingComboBox::setText(const QString& text) {
    QLineEdit* edit = lineEdit();
    if (edit->text() == text) {
        return;
    }
    const int cursor = edit->cursorPosition();
    edit->setText(text);
    if (edit->hasFocus()) {
        edit->setCursorPosition(std::min(cursor, static_cast<int>(text.size())));
    }
}

void tkCompletingComboBox::showPopup() {
    if (source_ != nullptr) {
        // A reset empties the edit field; what the user sees must stay.
        const QString keep = text();
        source_->reload();
        setText(keep);
    }
    QComboBox::showPopup();
}

void tkCompletingComboBox::keyPressEvent(QKeyEvent* event) {
    noteKey(*event);
    QComboBox::keyPressEvent(event);
}

bool tkCompletingComboBox::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lineEdit() && event->type() == QEvent::KeyPress) {
        noteKey(*static_cast<QKeyEvent*>(event));
    }
    return QComboBox::eventFilter(watched, event);
}

void tkCompletingComboBox::noteKey(const QKeyEvent& event) {
    deleting_ = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete ||
                event.matches(QKeySequence::Cut);
}

void tkCompletingComboBox::userTyped(const QString& text) {
    QLineEdit* edit = lineEdit();
    // Only an addition at the end completes, typed over a selection or not; a deletion
    // must be able to take the completed part away.
    const bool atEnd = edit->cursorPosition() == text.size();
    if (!deleting_ && atEnd && !text.isEmpty() && source_ != nullptr) {
        const QString completed = source_->completedString(text);
        if (completed != text) {
            edit->setText(completed);
            if (completed.size() > text.size()) {
                edit->setSelection(static_cast<int>(completed.size()),
                                   static_cast<int>(text.size() - completed.size()));
            }
        }
    }
    deleting_ = false;
    Q_EMIT textEditedByUser();
}
