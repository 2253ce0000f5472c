#include "database/BitSubscript.h"

#include <limits>
#include <stdexcept>

namespace kvr::netlistdb {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

int decimalValue(std::string_view digits)
{
    constexpr long long LARGEST = std::numeric_limits<int>::max();
    long long value = 0;
    for (const char digit : digits) {
        value = value * 10 + (digit - '0');
        if (value > LARGEST) {
            throw std::out_of_range("stoi");
        }
    }
    return static_cast<int>(value);
}

} // namespace

std::optional<BitSubscript> bitSubscript(std::string_view name)
{
    if (name.empty() || name.back() != ']') {
        return std::nullopt;
    }
    const std::size_t end = name.size() - 1;
    std::size_t begin = end;
    while (begin > 0 && isDigit(name[begin - 1])) {
        --begin;
    }
    if (begin == end || begin == 0 || name[begin - 1] != '[') {
        return std::nullopt;
    }
    return BitSubscript{begin - 1, decimalValue(name.substr(begin, end - begin))};
}

} // namespace kvr::netlistdb
