#pragma once

#include <cstddef>
#include <regex>
#include <string_view>

namespace kvr::netlistdb {

// What std::regex may take of the stack. The figures hold for builds with and without optimisation and with sanitizers;
// a test measures what each build really takes.

/// Kept free for whatever does not recurse: the C library, and the exception that ends a search.
constexpr std::size_t stackReserve = std::size_t{64} * 1024;

/// What compiling @p pattern (ECMAScript) takes at most beside the reserve: the compiler descends into each group, and
/// into each term of a sequence from the one before it. Takes time in proportion to the pattern.
std::size_t stackToCompile(std::string_view pattern);

/// What a search for @p expression takes at most beside the reserve for each character of a text, and once more; more
/// than any stack has when that is not known. Never 0. Takes time in proportion to the expression.
std::size_t stackPerPosition(const std::regex &expression);

/// What a search for @p expression takes at most beside the reserve without copying, advancing or comparing positions
/// in the text. Takes time in proportion to the expression.
std::size_t stackBetweenPositions(const std::regex &expression);

} // namespace kvr::netlistdb
