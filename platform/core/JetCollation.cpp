#include "JetCollation.h"

#include <QChar>
#include <sqlite3.h>
#include <unicode/ucol.h>

#include <algorithm>
#include <array>
#include <vector>

namespace qi {

namespace {

std::string_view trimTrailingBlanks(std::string_view s)
{
    while (!s.empty() && s.back() == ' ')
        s.remove_suffix(1);
    return s;
}

/// Decodes one UTF-8 sequence at `i`; invalid bytes stand for themselves.
char32_t decode(std::string_view s, std::size_t& i)
{
    const auto b0 = static_cast<unsigned char>(s[i]);
    auto cont = [&](std::size_t k) -> int {
        if (i + k >= s.size()) return -1;
        const auto b = static_cast<unsigned char>(s[i + k]);
        return (b & 0xC0) == 0x80 ? (b & 0x3F) : -1;
    };
    if (b0 < 0x80) { ++i; return b0; }
    if ((b0 & 0xE0) == 0xC0) {
        const int c1 = cont(1);
        if (c1 >= 0) { i += 2; return char32_t((b0 & 0x1F) << 6 | c1); }
    } else if ((b0 & 0xF0) == 0xE0) {
        const int c1 = cont(1), c2 = c1 >= 0 ? cont(2) : -1;
        if (c2 >= 0) { i += 3; return char32_t((b0 & 0x0F) << 12 | c1 << 6 | c2); }
    } else if ((b0 & 0xF8) == 0xF0) {
        const int c1 = cont(1), c2 = c1 >= 0 ? cont(2) : -1, c3 = c2 >= 0 ? cont(3) : -1;
        if (c3 >= 0) { i += 4; return char32_t((b0 & 0x07) << 18 | c1 << 12 | c2 << 6 | c3); }
    }
    ++i;
    return 0xDC00 + b0; // a lone byte keeps a stable place of its own
}

char32_t fold(char32_t c)
{
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    return QChar::toCaseFolded(c);
}

/// The equality of the comparison and the last word of its order: case-folded
/// code points of the texts without their trailing blanks.
int codePointCompare(std::string_view a, std::string_view b)
{
    std::size_t i = 0, j = 0;
    // Plain ASCII needs no decoding: fold the letters and compare byte by byte.
    while (i < a.size() && j < b.size()) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[j]);
        if ((ca | cb) & 0x80)
            break;
        const char32_t fa = fold(ca), fb = fold(cb);
        if (fa != fb)
            return fa < fb ? -1 : 1;
        ++i;
        ++j;
    }
    while (i < a.size() && j < b.size()) {
        const char32_t ca = fold(decode(a, i));
        const char32_t cb = fold(decode(b, j));
        if (ca != cb)
            return ca < cb ? -1 : 1;
    }
    if (i < a.size()) return 1;
    if (j < b.size()) return -1;
    return 0;
}

/// The German collator at the second strength: base letters, then accents; letter
/// case is left to the code-point comparison, which sees folded texts anyway.
/// Null when the collation data can't be had (then only code points decide).
struct German {
    UCollator* collator = nullptr;
    /// Rank of each printable ASCII character (0x20..0x7E, folded) in the collator's order.
    std::array<unsigned char, 128> rank{};
    /// True when digits and letters rank as their folded codes order them ("0" < "9" < "a" < "z"),
    /// each of its own rank.
    bool alnumByCode = false;

    German()
    {
        UErrorCode status = U_ZERO_ERROR;
        collator = ucol_open("de", &status);
        if (U_FAILURE(status) || !collator) {
            collator = nullptr;
            return;
        }
        ucol_setStrength(collator, UCOL_SECONDARY);
        // Printable ASCII has neither contractions nor ignorable characters here, so
        // comparing these ranks one by one orders plain texts as the collator does.
        std::vector<UChar> chars;
        for (char32_t c = 0x20; c < 0x7F; ++c)
            if (fold(c) == c)
                chars.push_back(UChar(c));
        std::stable_sort(chars.begin(), chars.end(), [&](UChar x, UChar y) {
            return ucol_strcoll(collator, &x, 1, &y, 1) == UCOL_LESS;
        });
        unsigned char r = 0;
        for (std::size_t k = 0; k < chars.size(); ++k) {
            if (k > 0 && ucol_strcoll(collator, &chars[k - 1], 1, &chars[k], 1) != UCOL_EQUAL)
                ++r;
            rank[chars[k]] = r;
        }
        for (char32_t c = 'A'; c <= 'Z'; ++c)
            rank[c] = rank[fold(c)];
        const std::string_view alnum = "0123456789abcdefghijklmnopqrstuvwxyz";
        alnumByCode = true;
        for (std::size_t k = 1; k < alnum.size(); ++k)
            alnumByCode = alnumByCode && rank[std::size_t(alnum[k - 1])] < rank[std::size_t(alnum[k])];
    }
};

const German& german()
{
    static const German g;
    return g;
}

/// Folded UTF-16 of a text, in a buffer that lives on the stack for short texts.
class FoldedUtf16 {
public:
    explicit FoldedUtf16(std::string_view s)
    {
        for (std::size_t i = 0; i < s.size();) {
            const char32_t c = fold(decode(s, i));
            if (c >= 0x10000) {
                push(UChar(0xD800 + ((c - 0x10000) >> 10)));
                push(UChar(0xDC00 + ((c - 0x10000) & 0x3FF)));
            } else {
                push(UChar(c));
            }
        }
    }
    const UChar* data() const { return heap_.empty() ? local_.data() : heap_.data(); }
    int32_t size() const { return int32_t(size_); }

private:
    void push(UChar u)
    {
        if (size_ < local_.size() && heap_.empty()) {
            local_[size_++] = u;
            return;
        }
        if (heap_.empty())
            heap_.assign(local_.begin(), local_.begin() + std::ptrdiff_t(size_));
        heap_.push_back(u);
        ++size_;
    }
    std::array<UChar, 128> local_;
    std::vector<UChar> heap_;
    std::size_t size_ = 0;
};

bool printableAscii(unsigned char c) { return c >= 0x20 && c < 0x7F; }

bool asciiAlnum(unsigned char c) { return (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

int collate(void*, int lenA, const void* a, int lenB, const void* b)
{
    return jetCompare(std::string_view(static_cast<const char*>(a), std::size_t(lenA)),
                      std::string_view(static_cast<const char*>(b), std::size_t(lenB)));
}

} // namespace

namespace detail {

int jetCompareUnicode(std::string_view a, std::string_view b)
{
    a = trimTrailingBlanks(a);
    b = trimTrailingBlanks(b);
    const int byCodePoint = codePointCompare(a, b);
    const German& g = german();
    if (byCodePoint == 0 || !g.collator)
        return byCodePoint;
    const FoldedUtf16 fa(a), fb(b);
    switch (ucol_strcoll(g.collator, fa.data(), fa.size(), fb.data(), fb.size())) {
    case UCOL_LESS:
        return -1;
    case UCOL_GREATER:
        return 1;
    default:
        return byCodePoint;
    }
}

} // namespace detail

int jetCompare(std::string_view a, std::string_view b)
{
    a = trimTrailingBlanks(a);
    b = trimTrailingBlanks(b);
    const German& g = german();
    // The common case of numbers and names in plain ASCII: past the bytes both texts share, the
    // first two different digits or letters of different letters decide, as their ranks would
    // below; the same bytes are the same text.
    const std::size_t n = std::min(a.size(), b.size());
    std::size_t same = 0;
    while (same < n && a[same] == b[same] && printableAscii(static_cast<unsigned char>(a[same])))
        ++same;
    if (same < n) {
        const auto ca = static_cast<unsigned char>(a[same]);
        const auto cb = static_cast<unsigned char>(b[same]);
        if (g.alnumByCode && asciiAlnum(ca) && asciiAlnum(cb)) {
            const char32_t fa = fold(ca), fb = fold(cb);
            if (fa != fb)
                return fa < fb ? -1 : 1;
        }
    } else if (a.size() == b.size()) {
        return 0;
    }
    // The same bytes are the same text (an index of few distinct texts compares them most often).
    if (a == b)
        return 0;
    if (!g.collator)
        return codePointCompare(a, b);
    // Printable ASCII: the ranks decide, character by character. The first two characters of
    // different rank, after characters of the same rank, are a difference of their base letters,
    // which no character after them can undo (an accent weighs only where the base letters are
    // the same); other characters before it leave the decision to the collator.
    // The shared printable bytes are of the same rank: the walk begins after them.
    int result = 0;
    std::size_t i = same;
    for (; i < n; ++i) {
        const auto ca = static_cast<unsigned char>(a[i]);
        const auto cb = static_cast<unsigned char>(b[i]);
        if (!printableAscii(ca) || !printableAscii(cb))
            return result != 0 ? result : detail::jetCompareUnicode(a, b);
        if (result == 0 && g.rank[ca] != g.rank[cb])
            result = g.rank[ca] < g.rank[cb] ? -1 : 1;
    }
    const std::string_view rest = a.size() > n ? a.substr(n) : b.substr(n);
    for (const char c : rest)
        if (!printableAscii(static_cast<unsigned char>(c)))
            return result != 0 ? result : detail::jetCompareUnicode(a, b);
    if (result != 0)
        return result;
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return codePointCompare(a, b);
}

std::string jetFoldKey(std::string_view text)
{
    text = trimTrailingBlanks(text);
    std::string key;
    key.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x80) {
            key.push_back(char(fold(c)));
            ++i;
            continue;
        }
        // The folded code point, written as UTF-8 would write it (also a lone byte's stand-in):
        // one sequence of bytes per code point, so equal keys are equal folded code points.
        const char32_t f = fold(decode(text, i));
        if (f < 0x80) {
            // A letter that folds to plain ASCII (the Kelvin sign to "k").
            key.push_back(char(f));
            continue;
        }
        if (f < 0x800) {
            key.push_back(char(0xC0 | (f >> 6)));
        } else {
            if (f < 0x10000) {
                key.push_back(char(0xE0 | (f >> 12)));
            } else {
                key.push_back(char(0xF0 | (f >> 18)));
                key.push_back(char(0x80 | ((f >> 12) & 0x3F)));
            }
            key.push_back(char(0x80 | ((f >> 6) & 0x3F)));
        }
        key.push_back(char(0x80 | (f & 0x3F)));
    }
    return key;
}

bool jetEqual(std::string_view a, std::string_view b)
{
    return codePointCompare(trimTrailingBlanks(a), trimTrailingBlanks(b)) == 0;
}

int registerJetCollation(sqlite3* db)
{
    return sqlite3_create_collation_v2(db, kJetCollation, SQLITE_UTF8, nullptr, &collate, nullptr);
}

} // namespace qi
