// FieldCount and GetField on any text and separator. The first byte gives the
// separator's length (0 to 3), the separator follows, the rest is the text.
// Besides surviving, the fields must agree with each other: counted from the
// front and from the back they are the same, and with a one-character separator
// they join back to the text.

#include "FuzzSupport.h"

#include "DbError.h"
#include "bGeneral.h"

#include <algorithm>

using namespace qi;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view in = fuzz::bytesOf(data, size);
    if (in.empty())
        return 0;
    const std::size_t sepLength = std::min<std::size_t>(static_cast<unsigned char>(in[0]) % 4, in.size() - 1);
    const std::string separator(in.substr(1, sepLength));
    const std::string text(in.substr(1 + sepLength));

    std::int16_t count = 0;
    try {
        count = FieldCount(text, separator);
    } catch (const DbError&) {
        // More fields than a 16-bit count holds: the overflow error is the answer.
        return 0;
    }
    fuzz::require(text.empty() == (count == 0), "only an empty text has no fields");
    if (separator.empty())
        fuzz::require(text.empty() || count == 1, "without a separator the text is one field");

    fuzz::require(GetField(text, separator, 0).empty(), "field 0 is empty");
    if (count < 32767) {
        fuzz::require(GetField(text, separator, std::int16_t(count + 1)).empty(), "a field past the end is empty");
        fuzz::require(GetField(text, separator, std::int16_t(-count - 1)).empty(), "a field before the start is empty");
    }

    // Every field of a short list, or a sample of a long one.
    const int step = count <= 32 ? 1 : count / 16;
    std::string joined;
    for (int n = 1; n <= count; n += step) {
        const std::string field = GetField(text, separator, std::int16_t(n));
        fuzz::require(field.size() <= text.size(), "a field is part of the text");
        fuzz::require(field == GetField(text, separator, std::int16_t(n - count - 1)),
                      "a field counted from the back is the same field");
        if (step == 1 && separator.size() == 1)
            joined += (n > 1 ? separator : std::string()) + field;
    }
    if (step == 1 && separator.size() == 1)
        fuzz::require(joined == text, "the fields joined by the separator give the text");
    return 0;
}
