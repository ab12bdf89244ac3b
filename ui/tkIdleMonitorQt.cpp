#include "ui/tkIdleMonitorQt.h"

#include <QDateTime>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

#include "foundation/tkNotificationNames.h"
#include "preferences/tkPreferences.h"

namespace {

constexpr int64_t kMinuteMillis = 60'000;
const char* const kKeepButton = "keepIdleTime";
const char* const kSubtractButton = "subtractIdleTime";
const char* const kStopButton = "subtractAndStop";

QString clockTime(int64_t millis) {
    return QLocale::system().toString(QDateTime::fromMSecsSinceEpoch(millis).time(),
                                      QLocale::ShortFormat);
}

}  // namespace

tkIdleMonitorQt::tkIdleMonitorQt(std::unique_ptr<ItkIdleSource> source, QObject* parent)
    : QObject(parent), _source(std::move(source)) {
    followPreferences();
    tkNotificationCenter::instance().addObserver(
        this, [this](const tkNotification&) { followPreferences(); }, kPreferencesChanged, nullptr);
    if (_source) {
        connect(&_readings, &QTimer::timeout, this, &tkIdleMonitorQt::readIdleTime);
        _readings.start(kReadingIntervalMillis);
    }
}

tkIdleMonitorQt::~tkIdleMonitorQt() {
    tkNotificationCenter::instance().removeObserver(this, kPreferencesChanged, nullptr);
}

void tkIdleMonitorQt::followPreferences() {
    _watch.setThresholdMillis(tkPreferences::instance().idleThresholdMinutes() * kMinuteMillis);
}

void tkIdleMonitorQt::readIdleTime() {
    // The question's own event loop goes on reading; those readings only keep the pause rule
    // from taking the time spent on the question for a sleep.
    if (!_source) {
        return;
    }
    const std::optional<tkIdleAbsence> absence = _watch.sample(_source->idleMillis());
    if (!absence || _asking) {
        return;
    }
    _asking = true;
    _watch.answer(*absence, ask(*absence));
    _asking = false;
}

std::unique_ptr<QMessageBox> tkIdleMonitorQt::makeQuestion(const tkIdleAbsence& absence) {
    auto question = std::make_unique<QMessageBox>();
    question->setObjectName(QStringLiteral("idleQuestion"));
    question->setWindowTitle(QStringLiteral("Idle Time"));
    question->setIcon(QMessageBox::Question);
    question->setText(questionText(absence));
    question->setInformativeText(QStringLiteral("What should happen to the idle time?"));
    const struct {
        const char* name;
        const char* text;
        QMessageBox::ButtonRole role;
    } buttons[] = {
        {kKeepButton, "Keep Idle Time", QMessageBox::RejectRole},
        {kSubtractButton, "Subtract Idle Time", QMessageBox::AcceptRole},
        {kStopButton, "Subtract and Stop Timers", QMessageBox::AcceptRole},
    };
    for (const auto& each : buttons) {
        QPushButton* button = question->addButton(QString::fromLatin1(each.text), each.role);
        button->setObjectName(QString::fromLatin1(each.name));
    }
    question->setDefaultButton(question->findChild<QPushButton*>(QLatin1String(kSubtractButton)));
    // Closing the question keeps the time: nothing is taken away unasked.
    question->setEscapeButton(question->findChild<QPushButton*>(QLatin1String(kKeepButton)));
    question->setWindowModality(Qt::ApplicationModal);
    return question;
}

tkIdleAnswer tkIdleMonitorQt::ask(const tkIdleAbsence& absence) {
    const std::unique_ptr<QMessageBox> question = makeQuestion(absence);
    question->exec();
    const QAbstractButton* clicked = question->clickedButton();
    const QString name = clicked != nullptr ? clicked->objectName() : QString();
    if (name == QLatin1String(kSubtractButton)) {
        return tkIdleAnswer::SubtractTime;
    }
    if (name == QLatin1String(kStopButton)) {
        return tkIdleAnswer::SubtractAndStop;
    }
    return tkIdleAnswer::KeepTime;
}

QString tkIdleMonitorQt::questionText(const tkIdleAbsence& absence) {
    QString text =
        QStringLiteral("You were away from %1 to %2 (%3) while %4:")
            .arg(clockTime(absence.start), clockTime(absence.end), spanText(absence.millis()),
                 absence.shares.size() == 1 ? QStringLiteral("this timer ran")
                                            : QStringLiteral("these timers ran"));
    for (const tkIdleShare& share : absence.shares) {
        text += QStringLiteral("\n    ") + QString::fromStdString(share.title);
        if (share.millis + kMinuteMillis / 2 < absence.millis()) {
            text += QStringLiteral(" (") + spanText(share.millis) + QStringLiteral(" of it)");
        }
        if (share.entry) {
            text += QStringLiteral(", now in the time sheet");
        }
    }
    return text;
}

QString tkIdleMonitorQt::spanText(int64_t millis) {
    const int64_t minutes = (millis + kMinuteMillis / 2) / kMinuteMillis;
    if (minutes < 1) {
        return QStringLiteral("less than a minute");
    }
    const int64_t hours = minutes / 60;
    const int64_t rest = minutes % 60;
    const auto unit = [](int64_t n, const char* one, const char* many) {
        return QString::number(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? one : many);
    };
    if (hours == 0) {
        return unit(rest, "minute", "minutes");
    }
    if (rest == 0) {
        return unit(hours, "hour", "hours");
    }
    return unit(hours, "hour", "hours") + QLatin1Char(' ') + unit(rest, "minute", "minutes");
}
