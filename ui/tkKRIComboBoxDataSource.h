#pragma once

#include <QAbstractListModel>
#include <QString>
#include <string>

// The list of one kind of known billing code ("employee", "fee code" or
// "job number") for a combo box, read from tkKnownRecordItems each time it is
// asked; and the completion of what the user types. Any other field name
// makes an empty list that never completes.
class tkKRIComboBoxDataSource : public QAbstractListModel {
    Q_OBJECT

  public:
    static constexpr const char* kUnknownBillCode = "unknown bill code";

    explicit tkKRIComboBoxDataSource(const std::string& fieldName, QObject* parent = nullptr);

    const std::string& fieldName() const { return fieldName_; }

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    // The first code, in the list's byte order, that is not below the typed
    // text upper-cased and begins with it; otherwise the text as typed. An
    // empty text completes to the empty code. Never a ranking.
    QString completedString(const QString& typed) const;

    // The lists change behind the model (a timer or the time sheet adds
    // codes); the combo box asks for a fresh look before it opens.
    void reload();

  private:
    std::string fieldName_;
};
