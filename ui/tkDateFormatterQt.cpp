#include "ui/tkDateFormatterQt.h"

#include <QDate>
#include <QStringList>

namespace {

// Two-digit years name the century from 1950 on, as the time sheet's own
// dates do: "49" is 2049, "50" is 1950.
int fullYear(int year, bool twoDigits) {
    if (!twoDigits) {
        return year;
    }
    return year < 50 ? 2000 + year : 1900 + year;
}

// Month/day/year with one or two digits each, a two- or four-digit year.
QDate parseStored(const QString& text) {
    const QStringList parts = text.trimmed().split(QLatin1Char('/'));
    if (parts.size() != 3) {
        return {};
    }
    bool monthOk = false;
    bool dayOk = false;
    bool yearOk = false;
    const int month = parts[0].toInt(&monthOk);
    const int day = parts[1].toInt(&dayOk);
    const int year = parts[2].toInt(&yearOk);
    if (!monthOk || !dayOk || !yearOk || parts[2].isEmpty() || parts[2].size() > 4) {
        return {};
    }
    return QDate(fullYear(year, parts[2].size() <= 2), month, day);
}

}  // namespace

tkDateFormatterQt::tkDateFormatterQt(const QLocale& locale)
    : _locale(locale), _shortFormat(locale.dateFormat(QLocale::ShortFormat)) {}

std::string tkDateFormatterQt::localizedDateStringFromUSDateString(
    const std::string& stored) const {
    const QDate date = parseStored(QString::fromStdString(stored));
    if (!date.isValid()) {
        return {};
    }
    return _locale.toString(date, _shortFormat).toStdString();
}

std::string tkDateFormatterQt::usDateStringFromLocalizedDateString(
    const std::string& displayed) const {
    const QString text = QString::fromStdString(displayed).trimmed();
    // Qt reads "yy" as 19yy; the locale's short form mostly has two-digit
    // years, so the century is put right afterwards. A four-digit year typed
    // into a two-digit form is accepted as it stands.
    const bool twoDigitForm = !_shortFormat.contains(QLatin1String("yyyy"));
    QDate date = _locale.toDate(text, _shortFormat);
    if (date.isValid() && twoDigitForm) {
        date = date.addYears(fullYear(date.year() - 1900, true) - date.year());
    }
    if (!date.isValid() && twoDigitForm) {
        QString longForm = _shortFormat;
        longForm.replace(QLatin1String("yy"), QLatin1String("yyyy"));
        date = _locale.toDate(text, longForm);
    }
    if (!date.isValid()) {
        return {};
    }
    return date.toString(QStringLiteral("MM/dd/yy")).toStdString();
}
