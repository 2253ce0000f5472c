#include "design/InstanceLimit.h"

#include "design/Design.h"

#include <DataBase.h>
#include <fmt/format.h>
#include <unordered_map>

namespace kvr::netlistdb::tool {

namespace {

using Counts = std::unordered_map<const Verific::Netlist *, std::uint64_t>;

std::uint64_t saturated(std::uint64_t a, std::uint64_t b)
{
    return a > UINT64_MAX - b ? UINT64_MAX : a + b;
}

/// Instances below @p netlist, from the counts of what it instantiates.
std::uint64_t sum(const Verific::Netlist &netlist, const Counts &counts, bool unfoldsBlackBoxes)
{
    std::uint64_t total = 0;
    Verific::MapIter mi;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        const Verific::Netlist *view = instance->View();
        total = saturated(total, 1);
        if (view != nullptr && (unfoldsBlackBoxes || !view->IsBlackBox())) {
            total = saturated(total, counts.at(view));
        }
    }
    return total;
}

/// Pushes what @p netlist instantiates and has no count yet.
void pushUncounted(const Verific::Netlist &netlist, const Counts &counts, std::vector<const Verific::Netlist *> &stack)
{
    Verific::MapIter mi;
    const Verific::Instance *instance = nullptr;
    FOREACH_INSTANCE_OF_NETLIST (&netlist, mi, instance) {
        if (instance->View() != nullptr && counts.count(instance->View()) == 0) {
            stack.push_back(instance->View());
        }
    }
}

} // namespace

std::uint64_t countInstances(const Verific::Netlist &top, Form form)
{
    if (form == Form::PostMap) {
        return saturated(1, top.GetInsts()->Size());
    }
    Counts counts;
    std::vector<const Verific::Netlist *> stack = {&top};
    while (!stack.empty()) {
        const Verific::Netlist *netlist = stack.back();
        const std::size_t before = stack.size();
        if (counts.count(netlist) == 0) {
            pushUncounted(*netlist, counts, stack);
        }
        if (stack.size() == before) {
            stack.pop_back();
            // Only black boxes directly below the top are unfolded.
            counts.try_emplace(netlist, sum(*netlist, counts, netlist == &top));
        }
    }
    return saturated(1, counts.at(&top));
}

void limitInstances(const SourceNetlist &source, std::uint64_t most)
{
    const std::uint64_t number = countInstances(*source.netlist, source.form);
    if (number > most) {
        const char *name = source.netlist->CellBaseName();
        throw refused(
            source.name,
            fmt::format("module '{}' unfolds to {}{} instances, beyond the limit of {}; --top chooses a smaller "
                        "part, --max-instances raises the limit",
                        name != nullptr ? name : "", number == UINT64_MAX ? "more than " : "", number, most));
    }
}

} // namespace kvr::netlistdb::tool
