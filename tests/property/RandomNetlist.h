#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace Verific {
class Netlist;
}

namespace property_test {

using Random = std::mt19937_64;

/// One design of random shape: a few modules, operators, primitives and black boxes above each other, with every oddity
/// of names, buses, ports and instances that an import has to cope with. No registers.
struct RandomDesign {
    /// Builds it in the global libset.
    explicit RandomDesign(Random &random);
    ~RandomDesign();
    RandomDesign(const RandomDesign &) = delete;
    RandomDesign &operator=(const RandomDesign &) = delete;

    /// Two tops over the same lower modules.
    std::vector<Verific::Netlist *> tops;

  private:
    std::vector<Verific::Netlist *> m_loose;
};

} // namespace property_test
