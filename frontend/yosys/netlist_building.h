#pragma once

#include "DataBase.h"

#include <memory>
#include <string>
#include <string_view>

/// The steps by which the reader builds netlists. Everything that only the embedded netlist database offers is called
/// from here alone.
namespace kvr::netlistdb::yosys {

/// Hands texts that are no C strings to the netlist database.
class CText {
  public:
    const char *of(std::string_view text)
    {
        m_text.assign(text.data(), text.size());
        return m_text.c_str();
    }
    /// `name[index]`
    const char *indexed(std::string_view name, int index);

  private:
    std::string m_text;
};

/// Makes an object and hands it to its owner.
template <typename Object, typename Owner, typename... Arguments> Object *addTo(Owner &owner, Arguments &&...arguments)
{
    auto made = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
    owner.Add(made.get());
    return made.release();
}

Verific::Net *addNet(Verific::Netlist &netlist, const char *name);
Verific::Net *addMemory(Verific::Netlist &netlist, const char *name, unsigned bits);
Verific::NetBus *addNetBus(Verific::Netlist &netlist, const char *name, int left, int right);
void putInBus(Verific::NetBus &bus, int index, Verific::Net *net);
Verific::Port *addPort(Verific::Netlist &netlist, const char *name, unsigned direction);
Verific::PortBus *addPortBus(Verific::Netlist &netlist, const char *name, int left, int right, unsigned direction);
void putInBus(Verific::PortBus &bus, int index, Verific::Port *port);
Verific::Instance *addInstance(Verific::Netlist &netlist, const char *name, Verific::Netlist *view);
void addAttribute(Verific::DesignObj &object, const char *key, const char *value);
void addParameter(Verific::Instance &inst, const char *key, const char *value);

/// Gives @p object a source position and makes it user-declared; 0 takes both away.
void setPosition(Verific::DesignObj &object, Verific::linefile_type position);
/// Marks @p object as declared by the user, or not, whether its position is known or not.
void setDeclared(Verific::DesignObj &object, bool on);
void setProtected(Verific::DesignObj &object);

/// @p clock may be null: the netlist then is no register.
void makeRegister(Verific::Netlist &netlist, Verific::Port *clock);
/// @p input may be null.
void makePrimitive(Verific::Netlist &netlist, unsigned type, Verific::Port *input);
void makeOperator(Verific::Netlist &netlist);

} // namespace kvr::netlistdb::yosys
