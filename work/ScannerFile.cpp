#include "ScannerFile.h"

#include "bGeneral.h"

namespace qi {

namespace {
const std::string kSeparator = ",";
} // namespace

std::string trimBlanks(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    const std::size_t last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

std::string normaliseRoom(const std::string& field)
{
    std::size_t zeros = 0;
    while (zeros < field.size() && field[zeros] == '0')
        ++zeros;
    return trimBlanks(field.substr(zeros));
}

bool ScannerFile::nextRecord()
{
    while (reader_.readLine(line_))
        if (FieldCount(line_, kSeparator) >= kScanFieldCount)
            return true;
    line_.clear();
    return false;
}

std::string ScannerFile::field(std::int16_t n) const { return GetField(line_, kSeparator, n); }

bool ScannerFile::next(ScanRecord& r)
{
    if (nextRecord()) {
        r.stMitarbNr = GetField(line_, kSeparator, 1);
        r.stAuftragsNr = GetField(line_, kSeparator, 2);
        r.Datum = GetField(line_, kSeparator, 3);
        r.Uhrzeit = GetField(line_, kSeparator, 4);
        r.stRaum = GetField(line_, kSeparator, 5);
        r.stInvNr = GetField(line_, kSeparator, 6);
        r.stArtNr = GetField(line_, kSeparator, 7);
        r.stTaet = GetField(line_, kSeparator, 8);
        return true;
    }
    return false;
}

} // namespace qi
