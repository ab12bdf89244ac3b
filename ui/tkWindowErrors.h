#pragma once

#include <QPointer>
#include <QString>
#include <functional>

class QMessageBox;
class QWidget;
class tkException;

// How a support window tells the user about a failure without waiting for
// an answer. By default a message box of the window's own shows it, not
// modal, one box re-used for every message; the application may hand every
// message to its one error window instead.
class tkWindowErrors {
  public:
    using Shower = std::function<void(const QString& title, const QString& message)>;

    explicit tkWindowErrors(QWidget* window) : _window(window) {}

    // An empty shower brings back the window's own message box.
    void setShower(Shower shower) { _shower = std::move(shower); }

    void show(const QString& title, const QString& message);
    // Titled "Error: " and the exception's name, as the error window does.
    void show(const tkException& error);

  private:
    QWidget* _window;
    Shower _shower;
    QPointer<QMessageBox> _box;
};
