#pragma once

#include "analysis/CellModel.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Verific {
class Instance;
class Netlist;
class Port;
} // namespace Verific

namespace kvr::netlistdb::analysis {

/// Pins, by their places in CellModel::pins.
using PinList = std::vector<std::uint32_t>;

/// Makes the model of one cell, pin by pin.
class ModelBuilder {
  public:
    /// @p instance has a view. It stands for all cells that get the model. @p named is the instance that has its
    /// parameters, itself or another.
    /// With @p borrows the model also has the inputs of that instance that the view does not have.
    ModelBuilder(const Verific::Instance &instance, const Verific::Instance &named, bool borrows);

    const Verific::Netlist &view() const { return *m_model.view; }
    /// Name of the cell that the view belongs to; may be empty.
    std::string_view type() const { return m_type; }
    /// Value of a parameter, empty when it has none of that name.
    std::string_view parameter(const char *name) const;

    /// The bits of the port @p name, the least significant first; empty when there is none.
    const PinList &port(std::string_view name) const;
    PinList inputs() const;
    PinList outputs() const;
    /// Name of the port that @p pin is a bit of; may be empty.
    std::string_view nameOf(std::uint32_t pin) const { return m_names[pin]; }
    const Verific::Port *portAt(std::uint32_t pin) const { return m_model.pins[pin].port; }
    bool isInput(std::uint32_t pin) const { return m_model.pins[pin].isInput; }
    bool isOutput(std::uint32_t pin) const { return m_model.pins[pin].isOutput; }
    /// The pin of @p port, or NONE.
    std::uint32_t pinOf(const Verific::Port *port) const;

    void setKind(CellKind kind) { m_model.kind = kind; }
    void setLoadsAsynchronously() { m_model.loadsAsynchronously = true; }
    void setRole(const PinList &pins, PinRole role);
    void setRole(std::uint32_t pin, PinRole role) { m_model.pins[pin].role = role; }
    PinRole roleOf(std::uint32_t pin) const { return m_model.pins[pin].role; }
    /// Every input in @p from reaches every output in @p to at once.
    void reach(const PinList &to, const PinList &from);
    /// The output @p to is electrically the input @p from, and reached by it.
    void pass(std::uint32_t to, std::uint32_t from, bool inverts);
    /// The same without a group of its own.
    void markPass(std::uint32_t to, std::uint32_t from, bool inverts);
    /// Adds a clock pin; returns its place among the clocks.
    std::uint32_t addClock(std::uint32_t pin, std::uint8_t edges);
    void launch(const PinList &outputs, std::uint32_t clock);
    /// The clock captures the inputs in @p inputs; clock pins among them are left out.
    void capture(const PinList &inputs, std::uint32_t clock);

    CellModel finish();

  private:
    void addPorts(const Verific::Netlist &view, bool areBorrowed);

    const Verific::Instance &m_named;
    std::string_view m_type;
    CellModel m_model;
    std::vector<std::string_view> m_names;
    std::unordered_map<std::string_view, PinList> m_byName;
    std::unordered_set<std::string_view> m_ownNames; ///< of the ports of the view
    std::unordered_map<const Verific::Port *, std::uint32_t> m_byPort;
    std::vector<PinList> m_launches;
    std::vector<PinList> m_captures;
};

inline bool endsWith(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// @p text with its ASCII letters in upper case.
std::string upperCase(std::string_view text);

/// Value of a parameter of @p instance, empty when it has none of that name.
std::string_view parameterOf(const Verific::Instance &instance, const char *name);

/// True when @p text is one of @p all.
inline bool isOneOf(std::string_view text, std::initializer_list<std::string_view> all)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

/// True when @p text begins with @p start.
inline bool startsWith(std::string_view text, std::string_view start)
{
    return text.substr(0, start.size()) == start;
}

/// True when the value of a parameter, in bits or in decimal, is a number other than zero.
bool isNonZero(std::string_view value);

/// A number of at most 63 bits as parameters hold it: in bits (32 and more of them) or in decimal; 0 for anything else.
std::uint64_t numberOf(std::string_view value);

/// Bit @p position of a vector as parameters hold it, in bits; a decimal number counts as its lowest bits.
bool bitOf(std::string_view value, std::uint64_t position);

} // namespace kvr::netlistdb::analysis
