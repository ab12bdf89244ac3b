#include <gtest/gtest.h>

#include "ui/tkDateFormatterQt.h"

// Stored dates shown in a locale's short form and read back, with the
// two-digit century rule both ways and text that names no date.
TEST(tkDateFormatterQt, StoredAndShownFormsRoundTripInEachLocale) {
    struct Case {
        const char* locale;
        const char* stored;
        const char* shown;
    };
    const Case cases[] = {
        {"en_US", "11/23/26", "11/23/26"}, {"en_US", "1/3/5", "1/3/05"},
        {"en_US", "12/31/49", "12/31/49"}, {"en_US", "02/01/50", "2/1/50"},
        {"de_DE", "11/23/26", "23.11.26"}, {"en_GB", "01/02/03", "02/01/2003"},
    };
    for (const Case& c : cases) {
        const tkDateFormatterQt formatter{QLocale(QString::fromLatin1(c.locale))};
        const std::string shown = formatter.localizedDateStringFromUSDateString(c.stored);
        EXPECT_EQ(shown, c.shown) << c.locale << " " << c.stored;
        const tkDateFormatterQt again{QLocale(QString::fromLatin1(c.locale))};
        const std::string back = again.usDateStringFromLocalizedDateString(shown);
        EXPECT_EQ(again.localizedDateStringFromUSDateString(back), shown)
            << c.locale << " " << back;
    }
}

TEST(tkDateFormatterQt, CenturyAndUnreadableText) {
    const tkDateFormatterQt us{QLocale(QStringLiteral("en_US"))};
    EXPECT_EQ(us.usDateStringFromLocalizedDateString("3/4/49"), "03/04/49");
    EXPECT_EQ(us.usDateStringFromLocalizedDateString("3/4/1987"), "03/04/87");
    EXPECT_EQ(us.usDateStringFromLocalizedDateString("not a date"), "");
    EXPECT_EQ(us.usDateStringFromLocalizedDateString("13/40/20"), "");
    EXPECT_EQ(us.localizedDateStringFromUSDateString("garbage"), "");
    EXPECT_EQ(us.localizedDateStringFromUSDateString("2/30/20"), "");
}
