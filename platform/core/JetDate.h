#pragma once
// A date-time value as the order register keeps it: days since 30 December 1899,
// the fraction being the time of day. The zero value is 30.12.1899 00:00:00.

#include <string>

namespace qi {

struct JetDate {
    double serial = 0.0;

    static JetDate fromParts(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);
    /// The current local date and time, to the second.
    static JetDate now();
    /// Parses "YYYY-MM-DD HH:MM:SS" (as stored); the zero date when the text is no such date.
    static JetDate fromStorageText(const std::string& text);

    /// "YYYY-MM-DD HH:MM:SS", the form in the database files.
    std::string toStorageText() const;
    /// The system's date-and-time text, "dd.MM.yyyy hh:mm:ss".
    std::string toDisplayText() const;
    void toParts(int& year, int& month, int& day, int& hour, int& minute, int& second) const;

    bool operator==(const JetDate&) const = default;
};

} // namespace qi
