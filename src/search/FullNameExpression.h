#pragma once

#include "search/BoundedExpression.h"

#include <cstddef>
#include <regex>
#include <string>
#include <string_view>

namespace kvr::netlistdb {

class IVDBInstance;

/// Looks for a regular expression in the full names of nets, which are put together in one buffer behind the prefix
/// that they share, or searched where they stand when there is no prefix.
class FullNameExpression {
  public:
    /// @p expression must outlive this object.
    explicit FullNameExpression(const std::regex &expression) : m_expression(expression) {}

    /// The names that follow belong to nets of @p instance, which must live as long as they come.
    void enter(const IVDBInstance &instance);
    /// True when std::regex_search finds the expression in the full name of the net called @p name.
    bool operator()(std::string_view name);

  private:
    BoundedExpression m_expression;
    const IVDBInstance *m_instance = nullptr; ///< whose prefix is still to be read
    std::string m_buffer;
    std::size_t m_prefixSize = 0;
};

} // namespace kvr::netlistdb
