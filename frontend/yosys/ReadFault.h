#pragma once

#include "YosysReader.h"

#include <string>
#include <string_view>

namespace kvr::netlistdb::yosys {

/// Knows which file, module and item is being read, and makes errors of it.
///
/// The names are views: whoever enters one keeps its text alive until it is left again.
class ReadFault {
  public:
    explicit ReadFault(std::string file) : m_file(std::move(file)) {}

    void enterModule(std::string_view name)
    {
        m_module = name;
        leaveItem();
    }
    void leaveModule() { enterModule({}); }
    /// @p kind is what precedes the name in a message: "cell", "net", "port", "memory".
    void enterItem(const char *kind, std::string_view name)
    {
        m_kind = kind;
        m_item = name;
        m_port = {};
    }
    void leaveItem() { enterItem("", {}); }
    /// The port of the current cell.
    void enterPort(std::string_view name) { m_port = name; }
    void leavePort() { m_port = {}; }

    /// Throws the ReadError for @p fault at the current place.
    [[noreturn]] void fail(std::string_view fault) const;

  private:
    std::string m_file;
    std::string_view m_module;
    const char *m_kind = "";
    std::string_view m_item;
    std::string_view m_port;
};

} // namespace kvr::netlistdb::yosys
