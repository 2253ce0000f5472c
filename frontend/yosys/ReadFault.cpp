#include "ReadFault.h"

namespace kvr::netlistdb::yosys {

void ReadFault::fail(std::string_view fault) const
{
    std::string text(fault);
    const char *separator = " (";
    const auto append = [&](const char *kind, std::string_view name) {
        if (name.data() != nullptr) {
            text.append(separator).append(kind).append(" '").append(name).append("'");
            separator = ", ";
        }
    };
    append("module", m_module);
    append(m_kind, m_item);
    append("port", m_port);
    if (m_module.data() != nullptr) {
        text += ')';
    }
    // Names may hold anything; the message stays on one line.
    for (char &c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            c = '?';
        }
    }
    throw ReadError(m_file + ": " + text);
}

} // namespace kvr::netlistdb::yosys
