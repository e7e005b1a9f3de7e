#include "ScannerFile.h"

#include "FileSystem.h"
#include "SystemError.h"
#include "Value.h"

namespace qi {

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

ScannerFile::ScannerFile(const std::string& path) : path_(path), reader_(path)
{
    if (reader_.startsAsUtf16())
        throw notScannerText("sie ist in UTF-16 geschrieben");
}

DbError ScannerFile::notScannerText(const char* why) const
{
    return DbError(dberr::PathFileAccess,
                   "Die Datei '" + displayPath(path_) + "' ist keine Textdatei der Scanner (" + why + ").");
}

std::string ScannerFile::check(const std::string& path)
{
    ScannerFile file(path);
    std::string first, line;
    if (!file.nextLine(first))
        throw DbError(dberr::InputPastEnd, emptyFileMessage(path));
    while (file.nextLine(line)) {
    }
    return first;
}

bool ScannerFile::nextLine(std::string& line)
{
    if (!reader_.readLine(line))
        return false;
    if (line.find('\0') != std::string::npos)
        throw notScannerText("sie enthält Nullzeichen");
    return true;
}

bool ScannerFile::nextRecord()
{
    // The fields that FieldCount and GetField give for the separator ",", found in one
    // pass over the line: a field runs from one past a comma to the next comma.
    while (nextLine(line_)) {
        commas_.clear();
        for (std::size_t p = line_.find(','); p != std::string::npos; p = line_.find(',', p + 1))
            commas_.push_back(p);
        const std::int16_t count = line_.empty() ? 0 : checkedInt16(std::int64_t(commas_.size()) + 1);
        if (count >= kScanFieldCount)
            return true;
    }
    line_.clear();
    commas_.clear();
    return false;
}

std::string ScannerFile::field(std::int16_t n) const
{
    const std::size_t count = commas_.size() + 1;
    if (line_.empty() || n < 1 || std::size_t(n) > count)
        return {};
    const std::size_t start = n == 1 ? 0 : commas_[std::size_t(n - 2)] + 1;
    const std::size_t end = std::size_t(n) == count ? line_.size() : commas_[std::size_t(n - 1)];
    return start < end ? line_.substr(start, end - start) : std::string();
}

bool ScannerFile::next(ScanRecord& r)
{
    if (!nextRecord())
        return false;
    r.stMitarbNr = field(1);
    r.stAuftragsNr = field(2);
    r.Datum = field(3);
    r.Uhrzeit = field(4);
    r.stRaum = field(5);
    r.stInvNr = field(6);
    r.stArtNr = field(7);
    r.stTaet = field(8);
    return true;
}

} // namespace qi
