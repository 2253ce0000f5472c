#include "design/SearchWalk.h"

#include "design/Design.h"
#include "design/ItemFacts.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

SearchWalk::SearchWalk(Design &design, const VDBSearchParam &param, const NamePattern &pattern, const Kinds &kinds,
                       std::uint64_t limit)
    : m_design(design), m_search(design, {pattern, kinds.mask(), param}), m_limit(limit)
{
}

std::vector<Column> SearchWalk::columns() const
{
    return {{"kind", "KIND", Look::Dim, false, 8},
            {"width", "WIDTH", Look::Plain, true, 5},
            {nullptr, "PATH"},
            {"path", nullptr},
            {"module", nullptr},
            {"user_module", nullptr},
            {"user_declared", nullptr},
            {"file", nullptr},
            {"line", nullptr},
            {"matched", nullptr},
            {"aliases", nullptr},
            {"sources", nullptr},
            {"attributes", nullptr}};
}

bool SearchWalk::step(ResultWriter &writer)
{
    const NameSearch::Step step = isAtLimit() ? NameSearch::Step::End : m_search.step();
    if (step == NameSearch::Step::Hit) {
        ++m_found;
        m_search.isInstance() ? writeInstance(writer) : write(writer);
    }
    return step != NameSearch::Step::End;
}

void SearchWalk::writeInstance(ResultWriter &writer)
{
    ItemFacts facts;
    if (!writer.isTable()) {
        facts = m_design.factsOf(m_search.instance());
    }
    IVDBNetlist &module = *m_search.instance().getModule();
    writer.row({std::string_view("instance"),
                {},
                std::string_view(m_search.path()),
                std::string_view(m_search.path()),
                std::string_view(module.getName()),
                std::string_view(m_design.nameOf(module)),
                module.isUserDeclared(),
                facts.fileValue(),
                facts.lineValue(),
                {},
                &facts.aliases,
                &facts.sources,
                &facts.attributes});
}

void SearchWalk::write(ResultWriter &writer)
{
    const OtherNameHit &hit = m_search.hit();
    const std::string &prefix = m_search.prefix();
    std::string path = prefix;
    path += hit.item != nullptr ? nameText(*hit.item) : hit.signal->name;
    const std::string matched = hit.matched.empty() ? "" : prefix + hit.matched;
    const std::string shown = matched.empty() ? path : path + " (= " + matched + ")";
    ItemFacts facts;
    if (!writer.isTable()) {
        ModuleNames &names = m_design.names(*m_search.instance().getModule());
        facts = hit.item != nullptr ? factsOf(names, *hit.item) : factsOf(names, *hit.signal);
        for (std::string &alias : facts.aliases) {
            alias.insert(0, prefix);
        }
    }
    const bool declared = hit.item != nullptr ? hit.item->isUserDeclared() : hit.signal->declared;
    const std::uint64_t width = hit.item != nullptr ? hit.item->getWidth() : hit.signal->bits.size();
    writer.row({std::string_view(m_search.kind() == ITEM_NET_BUS ? "bus" : "net"),
                width,
                std::string_view(shown),
                std::string_view(path),
                {},
                {},
                declared,
                facts.fileValue(),
                facts.lineValue(),
                matched.empty() ? Value() : std::string_view(matched),
                &facts.aliases,
                &facts.sources,
                &facts.attributes});
}

} // namespace kvr::netlistdb::tool
