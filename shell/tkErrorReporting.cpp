#include "shell/tkErrorReporting.h"

#include <iostream>
#include <utility>

#include "foundation/tkException.h"

namespace {

tkErrorReporter& installedReporter() {
    static tkErrorReporter reporter;
    return reporter;
}

void reportToStandardError(const tkException& error) {
    std::cerr << error.name() << ": " << error.message() << std::endl;
}

}  // namespace

void setErrorReporter(tkErrorReporter reporter) {
    installedReporter() = std::move(reporter);
}

const tkErrorReporter& errorReporter() {
    return installedReporter();
}

void reportError(const tkException& error) {
    try {
        if (installedReporter()) {
            installedReporter()(error);
        } else {
            reportToStandardError(error);
        }
    } catch (...) {
        reportToStandardError(error);
    }
}
