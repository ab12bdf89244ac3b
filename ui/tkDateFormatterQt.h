#pragma once

#include <QLocale>
#include <QString>

#include "records/tkDateFormatter.h"

// Dates between the stored form ("MM/dd/yy", what the time sheet file keeps)
// and the short date form of the user's locale, which every table, field and
// printed page shows. Installed through installDateFormatter() at launch.
class tkDateFormatterQt : public tkDateFormatter {
  public:
    // The locale is fixed at construction so that tests can choose one; the
    // application passes QLocale::system().
    explicit tkDateFormatterQt(const QLocale& locale = QLocale::system());

    std::string localizedDateStringFromUSDateString(const std::string& stored) const override;
    std::string usDateStringFromLocalizedDateString(const std::string& displayed) const override;

  private:
    QLocale _locale;
    QString _shortFormat;
};
