#pragma once
// The inventory numbers that object labels are made for: the numbers an order found that
// Quarn doesn't know, a list of numbers in a text file, or a range of numbers with a prefix
// ("I0100000" to "I0100199"). Refusals raise LabelSourceError with a German message.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace qi {

class CAuftragDb;

/// A source of labels that can't give any: the text says why (German).
class LabelSourceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The most labels one run makes (copies counted).
inline constexpr std::size_t kMaxLabels = 100000;

/// The numbers of the order's difference list that Quarn doesn't know ("2c"), each once, sorted
/// as the order databases sort texts; as the order's last evaluation left them.
std::vector<std::string> unknownNumbersOfOrder(CAuftragDb& order);

/// The numbers of a text file, one per line: blanks and tabs at both ends trimmed, empty lines
/// skipped, a number given twice kept twice, in the file's order. LabelSourceError when the
/// file can't be read, holds no number or more than kMaxLabels.
std::vector<std::string> numbersFromFile(const std::string& path);

/// Every number from `first` to `last`: the same prefix, then digits whose count stays (leading
/// zeros kept). LabelSourceError when the ends don't end in digits, differ in prefix or in the
/// count of digits, the end lies before the start, or the range holds more than kMaxLabels.
std::vector<std::string> numbersInRange(const std::string& first, const std::string& last);

/// Raises LabelSourceError when `count` labels with `copies` copies each are more than kMaxLabels.
void checkLabelCount(std::size_t count, int copies);

} // namespace qi
