#pragma once

#include <QComboBox>
#include <QString>

class tkKRIComboBoxDataSource;

// An editable combo box over the known billing codes of one kind. Typing at
// the end of the text completes it to the next known code, with the
// completed part selected so that the next key replaces it; a key that
// deletes never completes, so that it can take the completed part away.
// Typed text never picks a row of the list; only a choice from the list does.
class tkCompletingComboBox : public QComboBox {
    Q_OBJECT

  public:
    explicit tkCompletingComboBox(QWidget* parent = nullptr);

    // The list and completion to use; the box does not own it.
    void setDataSource(tkKRIComboBoxDataSource* source);
    tkKRIComboBoxDataSource* dataSource() const { return source_; }

    QString text() const;
    // Sets the text without telling anyone it was edited. When the box has the
    // keyboard the cursor stays where it was, so a refresh that only changes
    // the case of what is being typed doesn't throw the cursor about.
    void setText(const QString& text);

    void showPopup() override;

  Q_SIGNALS:
    // The user changed the text: typed (after completion) or chose from the list.
    void textEditedByUser();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void userTyped(const QString& text);
    void noteKey(const QKeyEvent& event);

    tkKRIComboBoxDataSource* source_ = nullptr;
    // Whether the last key pressed takes text away rather than adds it.
    bool deleting_ = false;
};
