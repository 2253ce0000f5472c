#include "search/NaturalOrder.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>

namespace kvr::netlistdb {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

const char *skipSpace(const char *text)
{
    while (std::isspace(static_cast<unsigned char>(*text)) != 0) {
        ++text;
    }
    return text;
}

std::size_t digitCount(const char *text)
{
    std::size_t count = 0;
    while (isDigit(text[count])) {
        ++count;
    }
    return count;
}

template <typename Number> int order(Number a, Number b)
{
    return a < b ? -1 : (a > b ? 1 : 0);
}

/// Numbers without leading zeros: the longer one is greater.
int compareAsIntegers(const char *a, std::size_t digitsOfA, const char *b, std::size_t digitsOfB)
{
    return digitsOfA != digitsOfB ? order(digitsOfA, digitsOfB) : order(std::memcmp(a, b, digitsOfA), 0);
}

/// Digits from the left, like those after a decimal point.
int compareAsFractions(const char *a, std::size_t digitsOfA, const char *b, std::size_t digitsOfB)
{
    const int difference = std::memcmp(a, b, std::min(digitsOfA, digitsOfB));
    return difference != 0 ? order(difference, 0) : order(digitsOfA, digitsOfB);
}

/// True for the characters that are neither digit nor white space in any locale: most of a name.
bool isPlain(char c)
{
    return c > '9' && c <= '~';
}

signed char folded(char c)
{
    return static_cast<signed char>(std::toupper(static_cast<unsigned char>(c)));
}

} // namespace

int naturalCompareNoCase(const char *a, const char *b)
{
    for (;;) {
        while (*a == *b && isPlain(*a)) {
            ++a;
            ++b;
        }
        a = skipSpace(a);
        b = skipSpace(b);
        if (isDigit(*a) && isDigit(*b)) {
            const std::size_t digitsOfA = digitCount(a);
            const std::size_t digitsOfB = digitCount(b);
            const int result = *a == '0' || *b == '0' ? compareAsFractions(a, digitsOfA, b, digitsOfB)
                                                      : compareAsIntegers(a, digitsOfA, b, digitsOfB);
            if (result != 0) {
                return result;
            }
            // Numbers that compare equal are the same digits, so all of them can be passed at once.
            a += digitsOfA;
            b += digitsOfB;
            continue;
        }
        if (*a == '\0' && *b == '\0') {
            return 0;
        }
        if (const int result = order(folded(*a), folded(*b)); result != 0) {
            return result;
        }
        ++a;
        ++b;
    }
}

} // namespace kvr::netlistdb
