#include "netlist_building.h"

#include <charconv>

namespace kvr::netlistdb::yosys {

const char *CText::indexed(std::string_view name, int index)
{
    char digits[16];
    char *const end = std::to_chars(digits, digits + sizeof digits, index).ptr;
    m_text.assign(name.data(), name.size());
    m_text += '[';
    m_text.append(digits, end);
    m_text += ']';
    return m_text.c_str();
}

Verific::Net *addNet(Verific::Netlist &netlist, const char *name)
{
    return addTo<Verific::Net>(netlist, name);
}

Verific::Net *addMemory(Verific::Netlist &netlist, const char *name, unsigned bits)
{
    auto memory = std::make_unique<Verific::RamNet>(name, bits);
    netlist.Add(static_cast<Verific::Net *>(memory.get()));
    return memory.release();
}

Verific::NetBus *addNetBus(Verific::Netlist &netlist, const char *name, int left, int right)
{
    return addTo<Verific::NetBus>(netlist, name, left, right);
}

void putInBus(Verific::NetBus &bus, int index, Verific::Net *net)
{
    bus.SetElement(index, net);
}

Verific::Port *addPort(Verific::Netlist &netlist, const char *name, unsigned direction)
{
    return addTo<Verific::Port>(netlist, name, direction);
}

Verific::PortBus *addPortBus(Verific::Netlist &netlist, const char *name, int left, int right, unsigned direction)
{
    return addTo<Verific::PortBus>(netlist, name, left, right, direction);
}

void putInBus(Verific::PortBus &bus, int index, Verific::Port *port)
{
    bus.SetElement(index, port);
}

Verific::Instance *addInstance(Verific::Netlist &netlist, const char *name, Verific::Netlist *view)
{
    return addTo<Verific::Instance>(netlist, name, view);
}

void addAttribute(Verific::DesignObj &object, const char *key, const char *value)
{
    object.AddAtt(std::make_unique<Verific::Att>(key, value).release()); // owns it from the call on
}

void addParameter(Verific::Instance &inst, const char *key, const char *value)
{
    inst.AddParam(key, value);
}

void setPosition(Verific::DesignObj &object, Verific::linefile_type position)
{
    object.SetLinefile(position);
    object.SetUserDeclared(!position ? 0 : 1);
}

void setDeclared(Verific::DesignObj &object, bool on)
{
    object.SetUserDeclared(on ? 1 : 0);
}

void setProtected(Verific::DesignObj &object)
{
    object.SetProtected(1);
}

void makeRegister(Verific::Netlist &netlist, Verific::Port *clock)
{
    if (clock != nullptr) {
        netlist.MakeRegister(clock);
    }
}

void makePrimitive(Verific::Netlist &netlist, unsigned type, Verific::Port *input)
{
    netlist.MakePrimitive(type, input);
}

void makeOperator(Verific::Netlist &netlist)
{
    netlist.MakeOperator();
}

} // namespace kvr::netlistdb::yosys
