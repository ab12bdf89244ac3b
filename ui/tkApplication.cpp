#include "ui/tkApplication.h"

#include <exception>

#include "foundation/tkException.h"
#include "shell/tkErrorReporting.h"

tkApplication::tkApplication(int& argc, char** argv) : QApplication(argc, argv) {}

bool tkApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const tkException& error) {
        reportError(error);
    } catch (const std::exception& error) {
        reportError(tkException("Unexpected Error", error.what()));
    }
    return false;
}
