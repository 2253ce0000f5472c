#include <netlistdb/DesignDatabase.h>

#include <DataBase.h>

namespace kvr::netlistdb {

// The imports work on a copy, so the restored netlist is deleted as soon as they return. When one throws, the restored
// netlist stays in the netlist database's libset.

bool DesignDatabase::parseElaboratedNetlistFromFile(const std::string &path)
{
    Verific::Netlist *const netlist = Verific::Netlist::RestoreFromFile(path.c_str());
    if (netlist == nullptr) {
        return false;
    }
    const bool complete = parseElaboratedNetlist(netlist);
    delete netlist;
    return complete;
}

bool DesignDatabase::parsePostMapNetlistFromFile(const std::string &path)
{
    Verific::Netlist *const netlist = Verific::Netlist::RestoreFromFile(path.c_str());
    if (netlist == nullptr) {
        return false;
    }
    const bool complete = parsePostMapNetlist(netlist);
    delete netlist;
    return complete;
}

} // namespace kvr::netlistdb
