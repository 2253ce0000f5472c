#include "DerivedNames.h"

#include "CellType.h"
#include "Digits.h"

#include <algorithm>
#include <array>

namespace kvr::netlistdb::yosys {

namespace {

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

bool isCapital(char c)
{
    return c >= 'A' && c <= 'Z';
}

/// `_042_`
bool isNumbered(std::string_view name)
{
    return name.size() > 2 && name.front() == '_' && name.back() == '_' &&
           std::all_of(name.begin() + 1, name.end() - 1, isDigit);
}

/// What place and route put behind the name of a net that they split or promoted.
bool hasRoutingSuffix(std::string_view name)
{
    static constexpr std::array<std::string_view, 5> SUFFIXES = {"SB_IO_", "nextpnr_", "glb_", "TRELLIS_IO_",
                                                                 "PACKER_"};
    for (std::size_t at = name.find('$', 1); at != std::string_view::npos; at = name.find('$', at + 1)) {
        const std::string_view rest = name.substr(at + 1);
        if (std::any_of(SUFFIXES.begin(), SUFFIXES.end(),
                        [&](std::string_view each) { return startsWith(rest, each); })) {
            return true;
        }
    }
    return false;
}

/// True when `.0.0_DO` follows the name of a memory, or something like it.
bool hasMemoryPort(std::string_view name)
{
    const auto skipDigits = [name](std::size_t at) {
        while (at < name.size() && isDigit(name[at])) {
            ++at;
        }
        return at;
    };
    for (std::size_t dot = name.find('.', 1); dot != std::string_view::npos; dot = name.find('.', dot + 1)) {
        const std::size_t middle = skipDigits(dot + 1);
        const std::size_t end = skipDigits(middle + 1);
        if (middle > dot + 1 && end > middle + 1 && end + 1 < name.size() && name[middle] == '.' && name[end] == '_' &&
            isCapital(name[end + 1])) {
            return true;
        }
    }
    return false;
}

/// Cells that netlists after packing name although they hold none of them any more.
bool isPackedCell(std::string_view type)
{
    return startsWith(type, "SB_") || startsWith(type, "TRELLIS_") || startsWith(type, "OXIDE_") ||
           startsWith(type, "MUX2_LUT") || startsWith(type, "DFF") ||
           (startsWith(type, "LUT") && type.size() == 4 && isDigit(type.back()));
}

/// Length of the port with which @p text begins, behind which another one follows; 0 when there is none.
std::size_t portLength(std::string_view text, CellType *type)
{
    if (type != nullptr) {
        for (std::size_t end = text.find('_'); end != std::string_view::npos; end = text.find('_', end + 1)) {
            if (type->findByName(text.substr(0, end)) != nullptr) {
                return end;
            }
        }
        return 0;
    }
    const std::size_t end = std::min(text.find('_'), text.size());
    const bool capitals = std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
                                      [](char c) { return isCapital(c) || isDigit(c); });
    return end < text.size() && capitals ? end : 0;
}

} // namespace

void DerivedNames::addCellType(CellType &type)
{
    if (!type.name().empty()) {
        m_types.emplace(type.name(), &type);
        m_longest = std::max(m_longest, type.name().size());
        m_initials.set(static_cast<unsigned char>(type.name().front()));
    }
}

bool DerivedNames::contains(std::string_view name) const
{
    if (startsWith(name, "_auto_") || isNumbered(name) || hasRoutingSuffix(name) || hasMemoryPort(name)) {
        return true;
    }
    for (std::size_t at = name.find('_', 1); at != std::string_view::npos; at = name.find('_', at + 1)) {
        if (at + 1 < name.size() && namesPin(name, at + 1)) {
            return true;
        }
    }
    return false;
}

/// True when a cell type follows at @p typeAt, then one of its ports, perhaps a number, and something that begins
/// another port.
bool DerivedNames::namesPin(std::string_view name, std::size_t typeAt) const
{
    const std::string_view rest = name.substr(typeAt);
    if (startsWith(rest, "$_")) {
        return rest.find("__", 2) != std::string_view::npos;
    }
    if (!isCapital(rest.front()) && !m_initials.test(static_cast<unsigned char>(rest.front()))) {
        return false;
    }
    for (std::size_t end = rest.find('_'); end != std::string_view::npos; end = rest.find('_', end + 1)) {
        const std::string_view type = rest.substr(0, end);
        const auto known = type.size() <= m_longest ? m_types.find(type) : m_types.end();
        if (known == m_types.end() && !isPackedCell(type)) {
            continue;
        }
        const std::string_view pins = rest.substr(end + 1);
        std::size_t length = portLength(pins, known != m_types.end() ? known->second : nullptr);
        if (length == 0) {
            continue;
        }
        std::size_t next = length + 1;
        while (next < pins.size() && isDigit(pins[next])) {
            ++next;
        }
        next += next < pins.size() && next > length + 1 && pins[next] == '_' ? 1 : 0;
        if (next < pins.size() && isCapital(pins[next])) {
            return true;
        }
    }
    return false;
}

} // namespace kvr::netlistdb::yosys
