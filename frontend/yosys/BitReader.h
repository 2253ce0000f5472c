#pragma once

#include "Bits.h"
#include "JsonText.h"

namespace kvr::netlistdb::yosys {

/// Reads one element of a `bits` or connection list. Fails when it is neither a constant nor a number of a bit.
Bit readBit(json::value &value, const ReadFault &fault);

/// Direction (port_direction) that @p value names. Fails when it names none.
unsigned readDirection(json::value &value, const JsonText &text, const ReadFault &fault);

/// Completes @p range, read from a port or net, with its width. Fails when its indices leave 32 bits.
void setWidth(VectorRange &range, std::size_t width, const ReadFault &fault);

/// The same for a port or net called @p name. A single bit that has its index in its name, as a vector leaves when it
/// is split, is no vector for the offset that it keeps.
void setWidth(VectorRange &range, std::size_t width, std::string_view name, const ReadFault &fault);

} // namespace kvr::netlistdb::yosys
