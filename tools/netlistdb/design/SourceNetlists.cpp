#include "design/SourceNetlists.h"

#include <DataBase.h>
#include <frontend/yosys/UserModuleName.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

SourceNetlists::SourceNetlists(const Verific::Netlist &top)
{
    Verific::Set hierarchy(Verific::POINTER_HASH);
    top.Hierarchy(hierarchy, 1);
    Verific::SetIter si;
    const Verific::Netlist *each = nullptr;
    FOREACH_SET_ITEM (&hierarchy, si, &each) {
        const Verific::Cell *cell = each->Owner();
        if (cell == nullptr || cell->Owner() == nullptr) {
            continue;
        }
        const char *library = cell->Owner()->Name();
        const char *name = cell->Name();
        Key key(library != nullptr ? library : "", name != nullptr ? name : "");
        if (each->IsBlackBox()) {
            m_blackBoxes.insert(key);
        }
        m_netlists.emplace(std::move(key), each);
    }
}

void SourceNetlists::replaceTop(const IVDBNetlist &module, const Verific::Netlist &copy)
{
    m_netlists[{module.GetLibName(), module.getName()}] = &copy;
}

const Verific::Netlist *SourceNetlists::of(const IVDBNetlist &module) const
{
    const auto found = m_netlists.find({module.GetLibName(), module.getName()});
    return found != m_netlists.end() ? found->second : nullptr;
}

const Verific::Instance *SourceNetlists::of(const IVDBInstance &instance) const
{
    const IVDBInstance *owner = instance.getOwnerInstance();
    const Verific::Netlist *netlist = owner != nullptr ? of(*owner->getModule()) : nullptr;
    return netlist != nullptr ? netlist->GetInst(instance.getName().c_str()) : nullptr;
}

bool SourceNetlists::isBlackBox(const IVDBNetlist &module) const
{
    return m_blackBoxes.count({module.GetLibName(), module.getName()}) != 0;
}

std::string SourceNetlists::userNameOf(const IVDBNetlist &module) const
{
    const Verific::Netlist *netlist = of(module);
    const char *name = netlist != nullptr ? netlist->GetAttValue(yosys::USER_MODULE) : nullptr;
    return name != nullptr ? name : module.getName();
}

} // namespace kvr::netlistdb::tool
