#include "ui/tkCompletingComboBox.h"

#include <QLineEdit>
#include <algorithm>

#include "ui/tkKRIComboBoxDataSource.h"

tkCompletingComboBox::tkCompletingComboBox(QWidget* parent) : QComboBox(parent) {
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // The box's own completer would pick rows and rank matches; completion
    // follows the code list's order instead (userTyped).
    setCompleter(nullptr);
    connect(lineEdit(), &QLineEdit::textEdited, this, &tkCompletingComboBox::userTyped);
    connect(this, &QComboBox::textActivated, this, [this](const QString& text) {
        lastText_ = text;
        Q_EMIT textEditedByUser();
    });
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
    lastText_ = text;
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

void tkCompletingComboBox::userTyped(const QString& text) {
    QLineEdit* edit = lineEdit();
    // Only typing that adds at the end completes: a deletion must be able to
    // take the completed part away. The text remembered is the typed part,
    // without the completion, so that typing over the selected completion
    // still counts as adding.
    const bool grewAtEnd = text.size() > lastText_.size() && edit->cursorPosition() == text.size();
    lastText_ = text;
    if (grewAtEnd && source_ != nullptr) {
        const QString completed = source_->completedString(text);
        if (completed != text) {
            edit->setText(completed);
            if (completed.size() > text.size()) {
                edit->setSelection(static_cast<int>(completed.size()),
                                   static_cast<int>(text.size() - completed.size()));
            }
        }
    }
    Q_EMIT textEditedByUser();
}
