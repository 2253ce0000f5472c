#include <netlistdb/VDBPort.h>

#include "model/LiveItems.h"
#include "netlist/verific_queries.h"

#include <DataBase.h>

#include <stdexcept>

namespace kvr::netlistdb {

namespace {

int directionCode(unsigned direction)
{
    switch (direction) {
    case Verific::DIR_IN:
        return PORT_DIR_INPUT;
    case Verific::DIR_OUT:
        return PORT_DIR_OUTPUT;
    default:
        return PORT_DIR_OTHER;
    }
}

} // namespace

VDBPort::VDBPort(const Verific::Port *port)
{
    if (port == nullptr) {
        throw std::invalid_argument("port is nullptr");
    }
    if (const char *name = port->Name()) {
        m_name = name;
    }
    m_width = 1;
    m_direction = directionCode(port->GetDir());
    countItem(LiveItem::Port);
}

VDBPort::VDBPort(const Verific::PortBus *portBus)
{
    if (portBus == nullptr) {
        throw std::invalid_argument("portBus is nullptr");
    }
    if (const char *name = portBus->Name()) {
        m_name = name;
    }
    m_width = verific_queries::widthOf(*portBus);
    m_direction = directionCode(portBus->GetDir());
    countItem(LiveItem::Port);
}

VDBPort::~VDBPort()
{
    uncountItem(LiveItem::Port);
}

const std::string &VDBPort::getName() const
{
    return m_name;
}

std::uint32_t VDBPort::getItemType() const
{
    return ITEM_PORT;
}

bool VDBPort::isBus() const
{
    return m_width > 1;
}

unsigned long long VDBPort::getWidth() const
{
    return m_width;
}

int VDBPort::direction() const
{
    return m_direction;
}

} // namespace kvr::netlistdb
