#pragma once

#include <memory>
#include <string>

// Turns a date between its stored form (month/day/year, as tkDate writes it) and the form the
// user reads. The core has no idea of locales; a user interface installs one of these.
class tkDateFormatter {
  public:
    virtual ~tkDateFormatter() = default;

    // Stored form to the user's form; text that can't be read gives the empty string.
    virtual std::string localizedDateStringFromUSDateString(const std::string& stored) const = 0;
    // The user's form back to the stored form; text that can't be read gives the empty string.
    virtual std::string usDateStringFromLocalizedDateString(const std::string& displayed) const = 0;
};

// Installs the process-wide formatter; null removes it. Takes ownership.
void installDateFormatter(std::unique_ptr<tkDateFormatter> formatter);

// The installed formatter, or null.
tkDateFormatter* installedDateFormatter();

// Stored form to display form through the installed formatter; with none installed the text
// passes through unchanged.
std::string dateToDisplay(const std::string& stored);

// Display form to stored form through the installed formatter; with none installed the text
// passes through unchanged.
std::string dateFromDisplay(const std::string& displayed);
