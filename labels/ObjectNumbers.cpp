#include "ObjectNumbers.h"

#include "CAuftragDb.h"
#include "Categories.h"
#include "Database.h"
#include "FileSystem.h"
#include "JetCollation.h"

#include <algorithm>
#include <fstream>
#include <set>

namespace qi {

namespace {

/// "100.000": a count as the messages write it.
std::string withDots(std::size_t n)
{
    std::string digits = std::to_string(n);
    for (int at = int(digits.size()) - 3; at > 0; at -= 3)
        digits.insert(std::size_t(at), ".");
    return digits;
}

std::string tooMany(std::size_t n)
{
    return "Das wären " + withDots(n) + " Etiketten; mehr als " + withDots(kMaxLabels) +
           " Etiketten auf einmal sind nicht möglich.";
}

std::string trimmed(const std::string& text)
{
    const char* space = " \t\r\n";
    const std::size_t first = text.find_first_not_of(space);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

/// A number split into its prefix and its digits at the end.
struct Split {
    std::string prefix;
    std::string digits;
};

Split split(const std::string& number)
{
    std::size_t at = number.size();
    while (at > 0 && number[at - 1] >= '0' && number[at - 1] <= '9')
        --at;
    return {number.substr(0, at), number.substr(at)};
}

/// The most digits a range may have (the numbers are counted in 64 bits).
constexpr std::size_t kMaxDigits = 18;

} // namespace

std::vector<std::string> unknownNumbersOfOrder(CAuftragDb& order)
{
    Database* db = order.database();
    if (!db)
        throw LabelSourceError(order.LastError());
    // An object scanned without a number gets its number from the team, not from this list.
    const Recordset rows =
        db->query("SELECT stIstInvNR FROM t_Differenzliste WHERE stTyp = ?1 AND stIstInvNR <> '' AND stIstInvNR <> ?2",
                  {std::string(category::k2c), std::string(kObjectWithoutNumber)});
    std::vector<std::string> numbers;
    std::set<std::string> seen;
    for (const auto& row : rows.rows()) {
        const std::string number = trimmed(toText(row[0]));
        if (!number.empty() && seen.insert(jetFoldKey(number)).second)
            numbers.push_back(number);
    }
    std::stable_sort(numbers.begin(), numbers.end(),
                     [](const std::string& a, const std::string& b) { return jetCompare(a, b) < 0; });
    return numbers;
}

std::vector<std::string> numbersFromFile(const std::string& path)
{
    std::ifstream in(nativePath(path), std::ios::binary);
    if (!in)
        throw LabelSourceError("Die Datei '" + displayPath(path) + "' kann nicht gelesen werden.");
    std::vector<std::string> numbers;
    bool first = true;
    for (std::string line; std::getline(in, line);) {
        if (first && line.rfind("\xEF\xBB\xBF", 0) == 0)
            line.erase(0, 3);
        first = false;
        std::string number = trimmed(line);
        if (number.empty())
            continue;
        if (numbers.size() == kMaxLabels)
            throw LabelSourceError("Die Datei '" + displayPath(path) + "' enthält mehr als " + withDots(kMaxLabels) +
                                   " Inventarnummern; mehr Etiketten auf einmal sind nicht möglich.");
        numbers.push_back(std::move(number));
    }
    if (in.bad())
        throw LabelSourceError("Die Datei '" + displayPath(path) + "' kann nicht gelesen werden.");
    if (numbers.empty())
        throw LabelSourceError("Die Datei '" + displayPath(path) + "' enthält keine Inventarnummern.");
    return numbers;
}

std::vector<std::string> numbersInRange(const std::string& firstText, const std::string& lastText)
{
    const std::string first = trimmed(firstText), last = trimmed(lastText);
    const Split a = split(first), b = split(last);
    for (const auto& [text, part] : {std::pair{first, a}, std::pair{last, b}}) {
        if (part.digits.empty())
            throw LabelSourceError("Die Nummer '" + text + "' endet nicht auf Ziffern; ein Bereich braucht Nummern "
                                   "wie I0100000 bis I0100199.");
        if (part.digits.size() > kMaxDigits)
            throw LabelSourceError("Die Nummer '" + text + "' hat mehr als " + std::to_string(kMaxDigits) +
                                   " Ziffern am Ende.");
    }
    if (a.prefix != b.prefix)
        throw LabelSourceError("Anfang '" + first + "' und Ende '" + last + "' des Bereichs beginnen verschieden ('" +
                               a.prefix + "' und '" + b.prefix + "').");
    if (a.digits.size() != b.digits.size())
        throw LabelSourceError("Anfang '" + first + "' und Ende '" + last + "' des Bereichs haben verschieden viele " +
                               "Ziffern (" + std::to_string(a.digits.size()) + " und " +
                               std::to_string(b.digits.size()) + ").");
    const unsigned long long from = std::stoull(a.digits), to = std::stoull(b.digits);
    if (to < from)
        throw LabelSourceError("Das Ende '" + last + "' des Bereichs liegt vor seinem Anfang '" + first + "'.");
    if (to - from >= kMaxLabels)
        throw LabelSourceError("Der Bereich von '" + first + "' bis '" + last + "' umfasst " +
                               withDots(std::size_t(to - from + 1)) + " Nummern; mehr als " + withDots(kMaxLabels) +
                               " Etiketten auf einmal sind nicht möglich.");
    std::vector<std::string> numbers;
    numbers.reserve(std::size_t(to - from + 1));
    const std::size_t width = a.digits.size();
    for (unsigned long long n = from;; ++n) {
        std::string digits = std::to_string(n);
        numbers.push_back(a.prefix + std::string(width - std::min(width, digits.size()), '0') + digits);
        if (n == to)
            break;
    }
    return numbers;
}

void checkLabelCount(std::size_t count, int copies)
{
    const std::size_t total = count * std::size_t(std::max(copies, 1));
    if (total > kMaxLabels)
        throw LabelSourceError(tooMany(total));
}

} // namespace qi
