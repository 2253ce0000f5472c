#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Verific {
class Instance;
class Netlist;
} // namespace Verific

namespace clockmap_test {

/// One kind of leaf cell of the random netlists, and what a reader of its manual knows about it.
///
/// The facts are lines of words, pins by their names without brackets (`Y1` is bit 1 of Y):
///
///     Y0 Y1 < A0 B0      every pin on the left follows every pin on the right at once
///     Y0 = A0, Y0 ! A0   Y0 is electrically A0, or A0 inverted
///     Q0 @ CLK           Q0 is launched by the clock on CLK
///     D0 > CLK data      D0 is captured by it, as data, enable or reset
///     CLK rise           CLK is a clock pin with that edge: rise, fall or both
///     Y0 is constant     or black-box; a pin may be both that and an input of a black box
///     latch              data passes while the cell is enabled
///     box A0 B0          inputs of a black box
struct ClockCell {
    std::string unit;     ///< as the text form of netlists writes it
    std::string cellName; ///< attribute of the instances; empty: none
    std::vector<std::pair<std::string, std::string>> parameters;
    std::string constantPin; ///< a pin that is always on power, or with "!" before it never; empty: none
    std::string facts;
    unsigned weight;
    Verific::Netlist *netlist = nullptr;
};

/// The cells of either form, made anew in the global library set.
std::vector<ClockCell> elaboratedCells();
std::vector<ClockCell> postMapCells();

/// The facts of one cell, taken apart.
struct CellFacts {
    struct Edge {
        std::string to, from;
    };
    struct Wire {
        std::string to, from;
        bool inverted;
    };
    struct Capture {
        std::string pin, clock, role;
    };
    struct Mark {
        std::string pin, text;
    };
    std::vector<Edge> follows;
    std::vector<Wire> wires;
    std::vector<Edge> launches; ///< from: the clock pin
    std::vector<Capture> captures;
    std::vector<Mark> clockPins;
    std::vector<Mark> ends; ///< outputs that are constant, or come out of a black box
    std::vector<std::string> boxPins;
    bool isLatch = false;
};
CellFacts parse(std::string_view facts);

} // namespace clockmap_test
