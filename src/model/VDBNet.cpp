#include <netlistdb/VDBNet.h>

#include "model/LiveItems.h"
#include "model/NameBlock.h"
#include "model/SourcePosition.h"
#include "netlist/verific_queries.h"

#include <netlistdb/IVDBLineInfo.h>

#include <DataBase.h>

#include <stdexcept>

namespace kvr::netlistdb {

VDBNet::VDBNet(const Verific::Net *net) : VDBNet(nullptr, net) {}

VDBNet::VDBNet(IVDBNetBus *ownerBus, const Verific::Net *net) : VDBNet(ownerBus, net, nullptr) {}

VDBNet::VDBNet(IVDBNetBus *ownerBus, const Verific::Net *net, SourcePaths *paths) : m_ownerBus(ownerBus)
{
    if (net == nullptr) {
        throw std::invalid_argument("net is nullptr");
    }
    m_width = verific_queries::widthOf(*net);
    m_power = net->IsPwr() != 0;
    m_ground = net->IsGnd() != 0;
    m_multipleDriven = net->IsMultipleDriven() != 0;
    m_lineInfo = sourcePosition(*net, paths);
    m_excluded = verific_queries::mustNotBeProbed(*net);
    m_protected = net->IsProtected() != 0;
    m_name = NameBlock::make(net->Name()); // the last that may throw: no destructor frees it before
    countItem(LiveItem::Net);
}

VDBNet::~VDBNet()
{
    NameBlock::release(m_name);
    uncountItem(LiveItem::Net);
}

const std::string &VDBNet::getName() const
{
    return NameBlock::string(m_name);
}

std::string_view VDBNet::nameText() const
{
    return NameBlock::text(m_name);
}

std::uint32_t VDBNet::getItemType() const
{
    return ITEM_NET;
}

bool VDBNet::isUserDeclared() const
{
    return m_lineInfo != nullptr;
}

bool VDBNet::isSelectableForDebugger() const
{
    return !m_protected && !m_excluded;
}

bool VDBNet::isProtected() const
{
    return m_protected;
}

IVDBLineInfo *VDBNet::getLineInfo()
{
    return m_lineInfo.get();
}

unsigned long long VDBNet::getWidth() const
{
    return m_width;
}

bool VDBNet::isBus() const
{
    return m_width > 1;
}

IVDBNetBus *VDBNet::getOwnerBus()
{
    return m_ownerBus;
}

bool VDBNet::isPwr() const
{
    return m_power;
}

bool VDBNet::isGnd() const
{
    return m_ground;
}

bool VDBNet::isMultipleDriven() const
{
    return m_multipleDriven;
}

} // namespace kvr::netlistdb
