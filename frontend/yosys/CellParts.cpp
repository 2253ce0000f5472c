#include "CellParts.h"

#include "CellTable.h"

#include <unordered_set>

namespace kvr::netlistdb::yosys {

namespace {

constexpr const char *CELL_NAME = "KVR_ATTRIBUTE_CELL_NAME";

/// The name that makes clock analysis take a cell for a register: one of those whose outputs all belong to the first
/// clock pin.
const char *registerName(CellKind kind)
{
    switch (kind) {
    case CellKind::Dsp:
        return "KVR_DSP";
    case CellKind::ShiftRegister:
        return "KVR_SRL";
    default:
        return "KVR_FF";
    }
}

void nameInstance(Verific::Instance &inst, const char *name)
{
    if (inst.GetAtt(CELL_NAME) == nullptr) {
        addAttribute(inst, CELL_NAME, name);
    }
}

/// @p wanted, made longer until no instance of @p netlist has it.
std::string freeInstanceName(const Verific::Netlist &netlist, std::string wanted)
{
    while (netlist.GetInst(wanted.c_str()) != nullptr) {
        wanted += '_';
    }
    return wanted;
}

bool clocksRegister(const Verific::Net &net)
{
    Verific::SetIter si;
    Verific::PortRef *ref = nullptr;
    FOREACH_PORTREF_OF_NET (&net, si, ref) {
        const Verific::Netlist *view = ref->GetInst()->View();
        if (view != nullptr && view->IsRegister() != 0 && view->GetClock() == ref->GetPort()) {
            return true;
        }
    }
    return false;
}

} // namespace

Verific::Instance *CellParts::add(Verific::Netlist &netlist, const char *name, CellType &type, const CellPlan &plan)
{
    m_view = &m_views.of(type, plan.parts.front().clock, plan.clocks);
    return addInstance(netlist, name, m_view->type->netlist());
}

void CellParts::connect(Verific::Instance &inst, CellView &view, const Connections &connections)
{
    for (const auto &[pin, net] : connections) {
        inst.Connect(m_views.port(view, pin), net);
    }
}

void CellParts::connect(Verific::Instance &inst, CellType &type, const CellPlan &plan,
                        const std::vector<Verific::Net *> &nets)
{
    const CellPlan::Part &first = plan.parts.front();
    std::vector<char> isElsewhere(type.pins().size(), 0);
    for (std::size_t number = 1; number < plan.parts.size(); ++number) {
        for (const unsigned output : plan.parts[number].outputs) {
            isElsewhere[output] = 1;
        }
    }
    // What decides on the clock of an output comes first: the clock, or what an output without a clock depends on.
    Connections ordered;
    const auto put = [&](unsigned pin) {
        if (nets[pin] != nullptr && isElsewhere[pin] == 0) {
            ordered.emplace_back(pin, nets[pin]);
            isElsewhere[pin] = 1;
        }
    };
    const auto eachRead = [&](auto &&visit) {
        for (const unsigned pin : type.clockPins.reads) {
            if (nets[pin] != nullptr) {
                visit(pin);
            }
        }
    };
    if (first.clock != CellPlan::NO_CLOCK) {
        put(first.clock);
    } else {
        eachRead(put);
    }
    for (unsigned pin = 0; pin < type.pins().size(); ++pin) {
        put(pin);
    }
    connect(inst, *m_view, ordered);

    for (std::size_t number = 1; number < plan.parts.size(); ++number) {
        const CellPlan::Part &part = plan.parts[number];
        FurtherPart further{&inst, &type, part.clock, part.opaque, {}};
        if (part.clock != CellPlan::NO_CLOCK) {
            further.connections.emplace_back(part.clock, nets[part.clock]);
        } else if (!part.opaque) {
            std::vector<char> isTaken(type.pins().size(), 0);
            const auto take = [&](unsigned pin) {
                if (isTaken[pin] == 0) {
                    further.connections.emplace_back(pin, nets[pin]);
                    isTaken[pin] = 1;
                }
            };
            for (const ClockPin &clock : type.clockPins.clocks) {
                isTaken[clock.pin] = 1;
            }
            eachRead(take);
            for (unsigned pin = 0; pin < type.pins().size(); ++pin) {
                if (nets[pin] != nullptr && type.pins()[pin]->IsOutput() == 0) {
                    take(pin);
                }
            }
        }
        for (const unsigned output : part.outputs) {
            further.connections.emplace_back(output, nets[output]);
        }
        m_furtherParts.push_back(std::move(further));
    }
    for (const unsigned pin : plan.otherClocks) {
        m_otherClocks.push_back({inst.Owner(), &inst, &type, pin, nets[pin]});
    }
    if (type.device == nullptr) {
        return;
    }
    if (first.clock != CellPlan::NO_CLOCK || first.opaque) {
        nameInstance(inst, registerName(type.device->kind));
    } else if (plan.isBuffer) {
        const CellType::Group *input = type.findByName(type.device->input);
        const bool isConnected = input != nullptr && input->widthKnown && input->range.width > 0;
        const bool isNamed = type.device->input == "I";
        if (isConnected && nets[input->firstPin] != nullptr && (isNamed || type.findByName("I") == nullptr)) {
            nameInstance(inst, "KVR_GBUFCE");
            if (!isNamed) {
                inst.Connect(m_views.bufferInput(*m_view), nets[input->firstPin]);
            }
        }
    }
}

void CellParts::nameCell(Verific::Instance &inst, const CellType &type)
{
    if (type.device->selfDescribing) {
        nameInstance(inst, std::string(type.name()).c_str());
    }
}

void CellParts::addPart(Verific::Netlist &netlist, const FurtherPart &part)
{
    const bool isClocked = part.clock != CellPlan::NO_CLOCK;
    CellView &view =
        m_views.of(*part.type, part.clock, isClocked ? std::vector<unsigned>{part.clock} : std::vector<unsigned>());
    const std::string suffix = isClocked ? part.type->pins()[part.clock]->Name() : "comb";
    const char *firstName = part.first->Name();
    const std::string name = freeInstanceName(netlist, (firstName != nullptr ? firstName : "") + (":" + suffix));
    Verific::Instance *inst = addInstance(netlist, name.c_str(), view.type->netlist());
    connect(*inst, view, part.connections);
    if (part.type->device != nullptr && (isClocked || part.opaque)) {
        nameInstance(*inst, registerName(part.type->device->kind));
    }
}

void CellParts::endModule(Verific::Netlist &netlist)
{
    for (const FurtherPart &part : m_furtherParts) {
        addPart(netlist, part);
    }
    m_furtherParts.clear();
}

void CellParts::finish()
{
    m_views.settle();
    std::unordered_set<const Verific::Net *> seen;
    for (const OtherClock &clock : m_otherClocks) {
        if (seen.insert(clock.net).second && !clocksRegister(*clock.net)) {
            addPart(*clock.netlist, {clock.first, clock.type, clock.pin, false, {{clock.pin, clock.net}}});
        }
    }
    m_views.settle();
}

} // namespace kvr::netlistdb::yosys
