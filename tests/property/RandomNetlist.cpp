#include "tests/property/RandomNetlist.h"

#include <DataBase.h>
#include <LineFile.h>

#include <algorithm>
#include <optional>
#include <string>

namespace property_test {

namespace {

class Generator {
  public:
    explicit Generator(Random &random) : m_random(random) {}

    /// A netlist of any kind, above those made so far.
    Verific::Netlist *makeNetlist(const std::vector<Verific::Netlist *> &below, bool isTop)
    {
        auto *const netlist = new Verific::Netlist("netlist");
        decorate(netlist);
        const auto kind = isTop ? 0 : pick(8);
        if (kind == 1) {
            netlist->MakeBlackBox();
        } else if (kind == 2) {
            netlist->MakeOperator();
        } else if (kind == 3) {
            netlist->MakePrimitive(Verific::PRIM_PWR + static_cast<unsigned>(pick(4)), nullptr);
        }
        fill(netlist, below, kind == 0 || kind > 3 || chance(20));
        return netlist;
    }

    std::size_t pick(std::size_t bound) { return m_random() % bound; }
    bool chance(unsigned percent) { return m_random() % 100 < percent; }
    std::optional<std::string> name()
    {
        static const char *const BASES[] = {"a", "b", "d", "d_", "A", "q", "", "x[1]", "m[0].q", "\xC3\xA4", "u/d"};
        static const char *const TAILS[] = {"",    "",     "[00]",  "[01]", "[]",
                                            "[x]", "[0] ", "[1]\n", "[-1]", "[2147483647]"};
        if (chance(2)) {
            return std::nullopt;
        }
        std::string text = BASES[pick(std::size(BASES))];
        if (chance(65)) {
            return text + "[" + std::to_string(pick(5)) + "]";
        }
        if (m_random() % 700 == 0) {
            return text + "[2147483648]";
        }
        return text + TAILS[pick(std::size(TAILS))];
    }

  private:
    static const char *text(const std::optional<std::string> &name)
    {
        return name.has_value() ? name->c_str() : nullptr;
    }

    void decorate(Verific::DesignObj *object)
    {
        if (chance(30)) {
            object->SetLinefile(Verific::LineFile::EncodeLineFile(chance(50) ? "/rtl/a.v" : "/rtl/b.v",
                                                                  static_cast<unsigned>(m_random())));
        }
        if (chance(15)) {
            object->SetProtected(1);
        }
    }

    void fill(Verific::Netlist *netlist, const std::vector<Verific::Netlist *> &below, bool hasContents)
    {
        for (std::size_t count = pick(5); count > 0; --count) {
            auto *const port = new Verific::Port(text(name()), static_cast<unsigned>(pick(4)));
            netlist->Add(port);
        }
        if (!hasContents) {
            return;
        }
        std::vector<Verific::Net *> nets;
        for (std::size_t count = chance(20) ? 0 : pick(30); count > 0; --count) {
            const auto netName = name();
            auto *const net = chance(4) ? new Verific::RamNet(text(netName), static_cast<unsigned>(pick(100)))
                                        : new Verific::Net(text(netName));
            netlist->Add(net);
            decorate(net);
            nets.push_back(net);
        }
        addBuses(netlist, nets);
        for (std::size_t count = below.empty() ? 0 : pick(4); count > 0; --count) {
            addInstance(netlist, chance(4) ? nullptr : below[pick(below.size())], nets);
        }
    }

    void addBuses(Verific::Netlist *netlist, const std::vector<Verific::Net *> &nets)
    {
        std::vector<Verific::Net *> free = nets;
        std::shuffle(free.begin(), free.end(), m_random);
        for (std::size_t count = pick(4); count > 0; --count) {
            const int left = static_cast<int>(pick(8)) - 2;
            const int right = static_cast<int>(pick(8)) - 2;
            auto *const bus = new Verific::NetBus(text(name()), left, right);
            netlist->Add(bus);
            decorate(bus);
            for (int index = std::min(left, right); index <= std::max(left, right) && !free.empty(); ++index) {
                if (chance(80)) {
                    bus->SetElement(index, free.back());
                    free.pop_back();
                }
            }
        }
    }

    void addInstance(Verific::Netlist *netlist, Verific::Netlist *view, const std::vector<Verific::Net *> &nets)
    {
        auto *const instance = new Verific::Instance(text(name()), view);
        netlist->Add(instance);
        for (std::size_t count = pick(3); count > 0; --count) {
            instance->AddParam(std::to_string(pick(4)).c_str(), "1");
        }
        if (view == nullptr || nets.empty()) {
            return;
        }
        Verific::MapIter ports;
        const Verific::Port *port = nullptr;
        FOREACH_PORT_OF_NETLIST (view, ports, port) {
            if (chance(80)) {
                instance->Connect(port, nets[pick(nets.size())]);
            }
        }
    }

    Random &m_random;
};

void putInCell(Verific::Netlist *netlist, const std::string &name)
{
    auto *library = Verific::Libset::Global()->GetLibrary("work");
    if (library == nullptr) {
        library = new Verific::Library("work");
        Verific::Libset::Global()->Add(library);
    }
    auto *const cell = new Verific::Cell(name.c_str());
    library->Add(cell);
    cell->Add(netlist);
}

} // namespace

RandomDesign::RandomDesign(Random &random)
{
    Generator generator(random);
    std::vector<Verific::Netlist *> below;
    for (std::size_t count = generator.pick(7); count > 0; --count) {
        Verific::Netlist *const netlist = generator.makeNetlist(below, false);
        putInCell(netlist, "m" + std::to_string(count));
        below.push_back(netlist);
    }
    for (const char *name : {"top", "other"}) {
        Verific::Netlist *const top = generator.makeNetlist(below, true);
        tops.push_back(top);
        if (generator.chance(20)) {
            m_loose.push_back(top);
        } else {
            putInCell(top, name);
        }
    }
}

RandomDesign::~RandomDesign()
{
    for (const Verific::Netlist *netlist : m_loose) {
        delete netlist;
    }
}

} // namespace property_test
