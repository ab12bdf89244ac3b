#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>

#include "foundation/tkNotificationCenter.h"
#include "timers/ItkIdleSource.h"
#include "timers/tkIdleWatch.h"

class QMessageBox;

// Reads the desktop's idle time every few seconds into the idle rule and, when the user comes
// back from an absence in which timers ran, asks once what to do with that time. Follows the
// preferences: the check off, or its minutes. Without a source it reads nothing and asks
// nothing.
class tkIdleMonitorQt : public QObject, public tkObserver {
    Q_OBJECT

  public:
    static constexpr int kReadingIntervalMillis = 5000;

    explicit tkIdleMonitorQt(std::unique_ptr<ItkIdleSource> source, QObject* parent = nullptr);
    ~tkIdleMonitorQt() override;

    const ItkIdleSource* source() const { return _source.get(); }
    tkIdleWatch& watch() { return _watch; }

    // One reading, and the question when it shows the user back; what the timer runs.
    void readIdleTime();

    // The question, application-modal: "keepIdleTime", "subtractIdleTime" and
    // "subtractAndStop" are its buttons; closing it keeps the time.
    static tkIdleAnswer ask(const tkIdleAbsence& absence);
    // The question's window, not yet shown.
    static std::unique_ptr<QMessageBox> makeQuestion(const tkIdleAbsence& absence);
    // Its text: when the user was away, how long, and what each timer counted meanwhile.
    static QString questionText(const tkIdleAbsence& absence);
    // "35 minutes", "1 hour 5 minutes", "less than a minute".
    static QString spanText(int64_t millis);

  private:
    void followPreferences();

    std::unique_ptr<ItkIdleSource> _source;
    tkIdleWatch _watch;
    QTimer _readings;
    bool _asking = false;
};
