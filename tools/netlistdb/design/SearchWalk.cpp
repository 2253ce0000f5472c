#include "design/SearchWalk.h"

#include "design/Design.h"
#include "design/ItemFacts.h"
#include "design/NamePattern.h"

#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

std::uint32_t kindOf(const OtherNameHit &hit)
{
    if (hit.item != nullptr) {
        return hit.item->getItemType();
    }
    return hit.signal->isVector ? ITEM_NET_BUS : ITEM_NET;
}

} // namespace

SearchWalk::SearchWalk(Design &design, const VDBSearchParam &param, const NamePattern &pattern, const Kinds &kinds,
                       std::uint64_t limit)
    : m_design(design), m_pattern(pattern), m_kinds(kinds), m_limit(limit), m_results(design.database().search(param)),
      m_others(design, pattern, param.userNetsOnly)
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
    IVDBItem *item = !isAtLimit() && m_results.next() ? m_results.getCurrent() : nullptr;
    // Hits by other names come between the buses and the nets of their instance.
    if (item == nullptr || item->getItemType() != ITEM_NET_BUS) {
        for (const OtherNameHit &hit : m_others.take()) {
            if (isAtLimit()) {
                return false;
            }
            if (m_kinds.has(kindOf(hit))) {
                write(writer, hit);
            }
        }
    }
    if (item == nullptr || isAtLimit()) {
        return false;
    }
    meet(*item, writer);
    return true;
}

/// Instances come along as the context of their nets, whether they match or not.
void SearchWalk::meet(IVDBItem &item, ResultWriter &writer)
{
    if (item.getItemType() == ITEM_INSTANCE) {
        m_instance = static_cast<IVDBInstance *>(&item);
        m_path = m_instance->getPath();
        if (!m_path.empty() && m_kinds.has(ITEM_INSTANCE) && m_pattern.matches(m_path)) {
            writeInstance(writer);
        }
        m_prefix = m_path + (m_path.empty() ? "" : "/");
        m_others.enter(*m_instance, m_prefix);
        return;
    }
    if (!m_kinds.has(item.getItemType())) {
        return;
    }
    auto &net = static_cast<IVDBNetBase &>(item);
    m_name.assign(m_prefix).append(net.getName());
    if (m_pattern.matches(m_name) && !m_others.covers(net)) {
        OtherNameHit hit;
        hit.item = &net;
        write(writer, hit);
    }
}

void SearchWalk::writeInstance(ResultWriter &writer)
{
    ++m_found;
    ItemFacts facts;
    if (!writer.isTable()) {
        facts = m_design.factsOf(*m_instance);
    }
    IVDBNetlist &module = *m_instance->getModule();
    writer.row({std::string_view("instance"),
                {},
                std::string_view(m_path),
                std::string_view(m_path),
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

void SearchWalk::write(ResultWriter &writer, const OtherNameHit &hit)
{
    ++m_found;
    const std::string path = m_prefix + (hit.item != nullptr ? hit.item->getName() : hit.signal->name);
    const std::string matched = hit.matched.empty() ? "" : m_prefix + hit.matched;
    const std::string shown = matched.empty() ? path : path + " (= " + matched + ")";
    ItemFacts facts;
    if (!writer.isTable()) {
        facts = hit.item != nullptr ? factsOf(m_design.names(*m_instance->getModule()), *hit.item)
                                    : factsOf(m_design.names(*m_instance->getModule()), *hit.signal);
        for (std::string &alias : facts.aliases) {
            alias.insert(0, m_prefix);
        }
    }
    const bool declared = hit.item != nullptr ? hit.item->isUserDeclared() : hit.signal->declared;
    const std::uint64_t width = hit.item != nullptr ? hit.item->getWidth() : hit.signal->bits.size();
    writer.row({std::string_view(kindOf(hit) == ITEM_NET_BUS ? "bus" : "net"),
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
