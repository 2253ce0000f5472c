#pragma once

namespace kvr::netlistdb {

/// Compares two NUL-terminated names the way people read them: numbers by value, letters without case, white space
/// left out. A number that starts with 0 is compared digit by digit, like the digits after a decimal point, and comes
/// before the others. Bytes from 0x80 on come before all other characters. Returns -1, 0 or +1.
int naturalCompareNoCase(const char *a, const char *b);

} // namespace kvr::netlistdb
