#pragma once

#include "tests/property/clockmap/RandomDesign.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace clockmap_test {

/// The clocks of a design, found the plain way: the hierarchy is unfolded, and for every net the whole fan-in or
/// fan-out is walked anew.
class ReferenceMap {
  public:
    explicit ReferenceMap(const RandomDesign &design);

    /// A net of the unfolded design.
    using Node = unsigned;
    struct Launch {
        std::map<std::string, unsigned> clocks;   ///< name of the clock -> cells
        std::map<std::string, unsigned> networks; ///< the same
        std::uint32_t flags = 0;                  ///< mask of Reaching
    };
    struct Capture {
        std::map<std::string, unsigned> clocks; ///< name of the clock -> mask of CaptureRole
        std::uint32_t flags = 0;                ///< mask of Reached
    };
    struct Clock {
        unsigned registers = 0;
        unsigned edges = 0;
        std::string root;
    };
    struct Root {
        Node node;
        bool inverted;
    };

    const std::vector<std::string> &names() const { return m_names; }
    Launch launch(Node node) const;
    Capture capture(Node node) const;
    Root electrical(Node node) const;
    /// All clocks by name.
    const std::map<std::string, Clock> &clocks() const { return m_clocks; }
    std::string kindOf(Node node) const;
    /// Whether @p before reaches @p after through one cell, or is the same wire one level on.
    bool isStep(Node after, Node before) const;
    Node find(const std::string &name) const { return m_byName.at(name); }

  private:
    struct Edge {
        Node node;
        unsigned cells;
    };
    struct Pass {
        Node from;
        bool inverted;
    };
    struct Driver {
        std::string kind; ///< as nameOf(ClockRoot)
        bool isInout;     ///< a pin or port that is also an input
    };
    struct Register {
        std::vector<Node> clocks;
    };

    void unfold(const Verific::Netlist *netlist, const std::string &path, const std::vector<Node> &ports, bool isTop);
    void addLeaf(const Verific::Instance *instance, const std::map<const Verific::Net *, Node> &nets);
    void join(Node inner, Node outer, unsigned direction);
    Node wireOf(Node node) const;
    /// Whether what goes out of an instance at @p inner has come in through a port of the same that is open: it begins
    /// outside then.
    bool comesFromOpenPort(Node inner) const;
    /// A net inside a module behind a port that is open outside: what begins there is no clock.
    bool isOpenPort(Node root) const;
    void findLoops();
    void findClocks();
    /// One step back to what a node is electrically; false when it begins there.
    bool passes(Node node, Pass &pass) const;

    static constexpr Node NOTHING = 0xFFFFFFFFU;
    const RandomDesign &m_design;
    std::vector<std::string> m_names;
    std::map<std::string, Node> m_byName;
    std::vector<unsigned> m_depth;
    std::vector<std::vector<Edge>> m_before;
    std::vector<std::vector<Node>> m_after;
    std::vector<std::uint32_t> m_flags;   ///< what begins at a node
    std::vector<std::uint32_t> m_reached; ///< what a node ends at
    std::vector<std::vector<Node>> m_launchedBy;
    std::vector<std::vector<std::pair<Node, unsigned>>> m_capturedBy; ///< clock net, role
    std::vector<std::vector<Pass>> m_passes;                          ///< what each driver passes on
    std::vector<std::vector<std::string>> m_drivers;    ///< kind of each driver; "up" for an inout port, "" for a wire
    std::vector<Node> m_inoutAbove;                     ///< the wire outside of an inout port, or NOTHING
    std::vector<std::pair<Node, unsigned>> m_clockPins; ///< net, edges; 0 edges for a reference
    std::vector<unsigned> m_cellOfPin;                  ///< number of the cell of each clock pin
    std::vector<Node> m_wires;                          ///< union-find of nets joined by inout ports
    std::map<std::string, Clock> m_clocks;
    std::map<Node, std::string> m_isClock;
    unsigned m_cells = 0;
};

} // namespace clockmap_test
