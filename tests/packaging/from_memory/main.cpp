// Hands a netlist over in memory: read from yosys' JSON, looked at through the netlist database, then imported.

#include <DataBase.h>
#include <LineFile.h>
#include <iostream>
#include <netlistdb/netlistdb.h>
#include <yosys/YosysReader.h>

int main(int, char **argv)
{
    Verific::Netlist *netlist = kvr::netlistdb::yosys::readJson(argv[1]);
    std::cout << "netlist " << netlist->Owner()->Name() << ", instances: " << netlist->GetInsts()->Size() << '\n';

    kvr::netlistdb::DesignDatabase database(false);
    if (!database.parseElaboratedNetlist(netlist)) {
        return 1;
    }
    kvr::netlistdb::IVDBInstance *root = database.getRoot(kvr::netlistdb::IDesignDatabase::SOURCE_ELABORATED);
    std::cout << "module " << root->getModule()->getName() << ", instances: " << root->getSubInstances().size() << '\n';
    return netlist->GetInsts()->Size() == root->getSubInstances().size() ? 0 : 1;
}
