#include "analysis/DesignModel.h"

#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// What drives @p net other than through the ports of its module.
ClockRoot kindOfDriver(const DesignModel &design, const ModuleGraph &module, NetSource source)
{
    const CellPin pin = module.pinAt(source.position());
    if (module.isSub(pin.cell)) {
        const std::uint32_t inner = module.subs[module.subOf(pin.cell)].module;
        const std::uint32_t net = design.hierarchy.modules[inner].ports[pin.pin].net;
        return net != NONE ? kindOfRoot(design, inner, net) : ClockRoot::Undriven;
    }
    const CellModel &model = design.hierarchy.models[module.modelOf(pin.cell)];
    if (!model.launches[pin.pin].empty()) {
        return ClockRoot::Register;
    }
    if (model.isOpaque()) {
        return ClockRoot::BlackBox;
    }
    return model.kind == CellKind::Constant ? ClockRoot::Constant : ClockRoot::Logic;
}

} // namespace

ClockRoot kindOfRoot(const DesignModel &design, std::uint32_t module, std::uint32_t net)
{
    const ModuleGraph &graph = design.hierarchy.modules[module];
    const Span<NetSource> sources = graph.sources[net];
    const bool isTop = module == design.hierarchy.top();
    std::uint32_t drivers = 0;
    ClockRoot kind = ClockRoot::Undriven;
    for (const NetSource source : sources) {
        if (source.isPort()) {
            if (isTop) {
                return ClockRoot::Port;
            }
            // What comes in through an inout port is what drives the net outside.
            drivers += graph.ports[source.port()].isOutput ? 0 : 1;
        } else {
            ++drivers;
            kind = kindOfDriver(design, graph, source);
        }
    }
    return drivers > 1 ? ClockRoot::Logic : kind;
}

ElectricalRoot electricalRoot(const DesignModel &design, const Place &place)
{
    Context context = place.context;
    std::uint32_t net = place.net;
    bool inverted = false;
    while (true) {
        const Level level = context.back();
        const ElectricalCode code = design.clocks[level.module].nets[net];
        inverted = inverted != code.isInverted();
        switch (code.kind()) {
        case ElectricalCode::Clock: {
            const std::uint32_t clock = level.firstClock + code.number();
            return {design.rootOf(clock), inverted, clock};
        }
        case ElectricalCode::Port: {
            context.pop_back();
            const std::uint32_t above = design.netAbove(context.back(), level, code.number());
            if (above == NONE) {
                context.push_back(level);
                return {{std::move(context), design.hierarchy.modules[level.module].ports[code.number()].net},
                        inverted,
                        NONE};
            }
            net = above;
            break;
        }
        case ElectricalCode::Net:
            return {{std::move(context), code.number()}, inverted, NONE};
        case ElectricalCode::Below: {
            const ModuleClocks::SubOutput output = design.clocks[level.module].below[code.number()];
            context.push_back(design.below(level, output.sub));
            net = design.hierarchy.modules[context.back().module].ports[output.port].net;
            // The code has counted the inverters inside already.
            inverted = inverted != design.clocks[context.back().module].nets[net].isInverted();
            break;
        }
        }
    }
}

} // namespace kvr::netlistdb::analysis
