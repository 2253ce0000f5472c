#include "design/TreeWalk.h"

#include "design/Design.h"
#include "design/TreeDrawing.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// Name of an instance as the tree of a table draws it.
std::string drawn(const InstanceWalk &walk, std::string_view name)
{
    std::vector<bool> isLast;
    for (std::size_t level = 1; level <= walk.depth(); ++level) {
        isLast.push_back(walk.isLast(level));
    }
    return treeDrawing(isLast).append(name);
}

/// Names of the nets that begin a clock, by the instance they lie in.
using ClocksByInstance = std::unordered_map<const IVDBInstance *, std::vector<std::string>>;

ClocksByInstance clocksByInstance(const analysis::ClockMap &map)
{
    ClocksByInstance clocks;
    for (const analysis::Clock &clock : map.clocks()) {
        if (clock.instance != nullptr && clock.net != nullptr) {
            clocks[clock.instance].push_back(clock.net->getName());
        }
    }
    return clocks;
}

} // namespace

TreeWalk::TreeWalk(Design &design, IVDBInstance &start, const TreeChoice &choice)
    : m_design(design), m_choice(choice), m_walk(start, choice.userModules)
{
    if (choice.clocks) {
        m_clocksOf = clocksByInstance(design.clocks());
    }
}

std::vector<Column> TreeWalk::columns() const
{
    std::vector<Column> columns = {{"depth", nullptr},
                                   {nullptr, "INSTANCE"},
                                   {"path", nullptr},
                                   {"name", nullptr},
                                   {"module", nullptr},
                                   {"user_module", "MODULE", Look::Name},
                                   {"library", "LIBRARY", Look::Dim},
                                   {"user_declared", nullptr},
                                   {"file", nullptr},
                                   {"line", nullptr},
                                   {"sources", nullptr}};
    if (m_choice.clocks) {
        columns.push_back({"clocks", "CLOCKS"});
    }
    return columns;
}

bool TreeWalk::step(ResultWriter &writer)
{
    static const std::vector<std::string> NONE;
    if (m_walk.instance() == nullptr) {
        return false;
    }
    IVDBInstance &instance = *m_walk.instance();
    IVDBNetlist &module = *instance.getModule();
    const std::string_view shown = m_walk.path().empty() ? std::string_view(m_design.nameOf(module))
                                   : m_walk.depth() == 0 ? std::string_view(m_walk.path())
                                                         : nameText(instance);
    const std::string drawing = writer.isTable() ? drawn(m_walk, shown) : std::string();
    const ItemFacts facts = writer.isTable() ? ItemFacts() : m_design.factsOf(instance);
    Row row = {std::uint64_t(m_walk.depth()),
               std::string_view(drawing),
               std::string_view(m_walk.path()),
               nameText(instance),
               std::string_view(module.getName()),
               std::string_view(m_design.nameOf(module)),
               std::string_view(module.GetLibName()),
               module.isUserDeclared(),
               facts.fileValue(),
               facts.lineValue(),
               &facts.sources};
    if (m_choice.clocks) {
        const auto found = m_clocksOf.find(&instance);
        row.emplace_back(found != m_clocksOf.end() ? &found->second : &NONE);
    }
    writer.row(row);
    pass();
    return true;
}

void TreeWalk::pass()
{
    if (m_walk.depth() < m_choice.depth) {
        m_walk.next();
    } else {
        m_walk.skip();
    }
}

} // namespace kvr::netlistdb::tool
