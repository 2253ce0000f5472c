#include "Bindings.h"
#include "NotFound.h"
#include "Text.h"
#include "Turn.h"
#include "base/Failure.h"
#include "design/Subscript.h"

#include <variant>
#include <vector>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

using Found = std::variant<InstanceHandle, BusHandle, std::vector<NetHandle>>;

/// The signal of @p names that has the constant called @p name, and its place in it.
NetHandle constantCalled(const Origin &origin, IVDBInstance &instance, tool::ModuleNames &names,
                         const std::string &name)
{
    for (const tool::OtherSignal &signal : names.others()) {
        for (std::size_t position = 0; position < signal.bits.size(); ++position) {
            if (signal.bits[position].net == nullptr && signal.bitName(position) == name) {
                return {origin, &instance, nullptr, &signal, position};
            }
        }
    }
    throw tool::wrongUsage(origin.design().name() + ": no net or bus '" + name + "'");
}

Found signalOf(const Origin &origin, const std::string &path, const std::vector<tool::PathResolver::Bit> &bits)
{
    IVDBInstance &instance = *bits.front().instance;
    const std::string prefix = fullName(instance, "");
    tool::ModuleNames &names = origin.design().names(*instance.getModule());
    const std::string name = path.substr(prefix.size());
    const bool isNet = names.nets().count(name) != 0;
    for (const tool::OtherSignal &signal : names.others()) {
        if (!isNet && signal.isVector && signal.name == name) {
            return BusHandle{origin, &instance, nullptr, &signal};
        }
    }
    if (const auto bus = names.buses().find(name); !isNet && bus != names.buses().end()) {
        return BusHandle{origin, &instance, bus->second};
    }
    std::vector<NetHandle> nets;
    nets.reserve(bits.size());
    for (const tool::PathResolver::Bit &bit : bits) {
        nets.push_back(bit.net != nullptr ? NetHandle{origin, &instance, bit.net}
                                          : constantCalled(origin, instance, names, bit.name.substr(prefix.size())));
    }
    return nets;
}

Found find(const Origin &origin, const std::string &path)
{
    View &view = origin.view();
    if (const std::vector<tool::PathResolver::Bit> bits = view.resolver.find(path); !bits.empty()) {
        return signalOf(origin, path, bits);
    }
    if (path.empty() || view.resolver.isInstanceOnly(path)) {
        return InstanceHandle{origin, &view.resolver.startOf(path)};
    }
    try {
        view.resolver.nets(path);
    } catch (const tool::Failure &failure) {
        throw NotFound(failure.what());
    }
    throw NotFound(path);
}

} // namespace

py::object findByPath(const Origin &origin, const IVDBInstance &start, const std::string &path)
{
    // A hint in an error message may compare clocks.
    const Found found = inTurn([&] {
        origin.check();
        return find(origin, path.empty() ? start.getPath() : fullName(start, path));
    });
    if (const auto *const nets = std::get_if<std::vector<NetHandle>>(&found)) {
        if (nets->size() == 1) {
            return py::cast(nets->front());
        }
        py::list list;
        for (const NetHandle &net : *nets) {
            list.append(net);
        }
        return std::move(list);
    }
    const auto *const bus = std::get_if<BusHandle>(&found);
    return bus != nullptr ? py::cast(*bus) : py::cast(std::get<InstanceHandle>(found));
}

} // namespace kvr::netlistdb::python
