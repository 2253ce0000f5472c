#pragma once

namespace kvr::netlistdb::yosys {

/// Whatever the locale.
inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace kvr::netlistdb::yosys
