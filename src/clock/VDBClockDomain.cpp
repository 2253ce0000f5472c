#include <netlistdb/VDBClockDomain.h>

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/NameText.h>

#include <stdexcept>

namespace kvr::netlistdb {

VDBClockDomain::VDBClockDomain(IVDBNet *net, IVDBInstance *inst) : m_instance(inst), m_net(net)
{
    if (net == nullptr) {
        throw std::invalid_argument("VDBClockDomain: net is nullptr");
    }
    if (inst == nullptr) {
        throw std::invalid_argument("VDBClockDomain: inst is nullptr");
    }
    m_name = inst->getPath();
    if (!m_name.empty()) {
        m_name += '/';
    }
    m_name += nameText(*net);
}

VDBClockDomain::~VDBClockDomain()
{
    m_net = nullptr;
    m_instance = nullptr;
}

const std::string &VDBClockDomain::getName() const
{
    return m_name;
}

std::uint32_t VDBClockDomain::getItemType() const
{
    return ITEM_CLOCK_DOMAIN;
}

IVDBNet *VDBClockDomain::getNet() const
{
    return m_net;
}

IVDBInstance *VDBClockDomain::getInstance() const
{
    return m_instance;
}

} // namespace kvr::netlistdb
