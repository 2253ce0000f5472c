#include "PortRef.h"

#include "Port.h"

namespace Verific {

unsigned PortRef::IsInput() const
{
    return m_port->IsInput();
}

unsigned PortRef::IsOutput() const
{
    return m_port->IsOutput();
}

unsigned PortRef::IsInout() const
{
    return m_port->IsInout();
}

} // namespace Verific
