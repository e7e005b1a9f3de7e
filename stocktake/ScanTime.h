#pragma once
// The time of a scan as one sortable text. The scanner writes the date as "TT.MM.JJJJ" and
// the time as "hh:mm:ss" in two fields; lists across orders sort and compare scans by
// "JJJJ-MM-TT hh:mm:ss".

#include <string>
#include <string_view>

namespace qi {

/// "JJJJ-MM-TT hh:mm:ss" from the scanner's date "TT.MM.JJJJ" and time (blanks around either
/// ignored). A date not of that form gives the two texts as they stand, joined by a blank; two
/// empty texts give an empty text, so that a row without a scan has no time.
std::string scanTime(std::string_view datum, std::string_view uhrzeit);
/// The same into `out`, which keeps its buffer from call to call.
void scanTime(std::string_view datum, std::string_view uhrzeit, std::string& out);

} // namespace qi
