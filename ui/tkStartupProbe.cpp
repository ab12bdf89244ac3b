#include "ui/tkStartupProbe.h"

#include <time.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QWindow>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

long long wallClockNanoseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

long long& mainStarted() {
    static long long started = 0;
    return started;
}

long residentKiB() {
    std::ifstream statm("/proc/self/statm");
    long size = 0;
    long resident = 0;
    statm >> size >> resident;
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

class ExposeWatcher : public QObject {
  public:
    explicit ExposeWatcher(std::string path) : path_(std::move(path)) {}

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Expose) {
            auto* window = qobject_cast<QWindow*>(watched);
            if (window != nullptr && window->isExposed()) {
                report();
                QCoreApplication::instance()->removeEventFilter(this);
                deleteLater();
            }
        }
        return false;
    }

  private:
    void report() const {
        const std::string partial = path_ + ".partial";
        if (FILE* out = std::fopen(partial.c_str(), "w")) {
            std::fprintf(out, "%lld %ld %lld\n", wallClockNanoseconds(), residentKiB(),
                         mainStarted());
            std::fclose(out);
            // Whole or not at all for whoever waits for the file.
            std::rename(partial.c_str(), path_.c_str());
        }
    }

    std::string path_;
};

}  // namespace

void tkStartupProbe::markProcessStart() {
    mainStarted() = wallClockNanoseconds();
}

void tkStartupProbe::watchFirstWindow() {
    const char* path = std::getenv("CHRONOLET_STARTUP_PROBE");
    if (path == nullptr || path[0] == '\0') {
        return;
    }
    QCoreApplication::instance()->installEventFilter(new ExposeWatcher(path));
}
