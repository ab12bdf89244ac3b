#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QPlainTextEdit;
class tkException;

// The application's one error window. A second message replaces the first
// in the same window.
class tkErrorDisplay : public QDialog {
    Q_OBJECT

  public:
    explicit tkErrorDisplay(QWidget* parent = nullptr);
    ~tkErrorDisplay() override;

    // The shared instance, set at launch; null before that (and after it went).
    static tkErrorDisplay* errorDisplay();
    static void setErrorDisplay(tkErrorDisplay* display);

    // Titled "Error: " + the exception's name, showing its message; the title
    // line inside keeps what an earlier dialog put there. Modal: a modal run
    // of its own until the user closes it. Otherwise shown above all ordinary
    // windows, and the call returns at once.
    void showErrorDialog(const tkException& error, bool runModal);

    // Title and title line `title`, body `message`. Modal while another window
    // runs modally: a sheet on that window, and the call returns at once.
    // Deliberately unlike showErrorDialog, which always runs modally itself.
    void showErrorDialogWithTitle(const QString& title, const QString& message, bool runModal);

    bool runningModal() const { return runningModal_; }
    QString messageText() const;
    QString titleLineText() const;

  private:
    void showAbove();
    void runModal();
    void becomeFreeWindow();

    QLabel* messageTitleDisplay_;
    QPlainTextEdit* messageTextView_;
    bool runningModal_ = false;
};
