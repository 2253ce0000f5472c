#include "design/Design.h"

#include "base/Progress.h"
#include "base/Stats.h"
#include "design/InstanceLimit.h"

#include <DataBase.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

/// Library and name of every black box in the hierarchy of @p netlist. Asked before the import, which does not record
/// it.
std::set<std::pair<std::string, std::string>> blackBoxesOf(const Verific::Netlist &netlist)
{
    std::set<std::pair<std::string, std::string>> names;
    Verific::Set hierarchy(Verific::POINTER_HASH);
    netlist.Hierarchy(hierarchy, 1);
    Verific::SetIter si;
    const Verific::Netlist *each = nullptr;
    FOREACH_SET_ITEM (&hierarchy, si, &each) {
        const Verific::Cell *cell = each->Owner();
        if (each->IsBlackBox() && cell != nullptr && cell->Owner() != nullptr) {
            const char *library = cell->Owner()->Name();
            const char *name = cell->Name();
            names.emplace(library != nullptr ? library : "", name != nullptr ? name : "");
        }
    }
    return names;
}

} // namespace

Design::Design(std::string name, Form form, Clocks clocks, std::set<std::pair<std::string, std::string>> blackBoxes,
               DeviceCensus devices)
    : m_name(std::move(name)), m_form(form), m_blackBoxes(std::move(blackBoxes)), m_devices(std::move(devices)),
      m_database(std::make_unique<DesignDatabase>(clocks == Clocks::Yes))
{
}

bool Design::isBlackBox(const IVDBNetlist &module) const
{
    return m_blackBoxes.count({module.GetLibName(), module.getName()}) != 0;
}

Design::~Design()
{
    m_database.reset();
    Verific::Libset::Reset();
}

IVDBNetlist &Design::top()
{
    return *m_database->getTopModule(type());
}

IVDBInstance &Design::root()
{
    return *m_database->getRoot(type());
}

IClockDomain *Design::clockOf(IVDBInstance &instance, IVDBNet &net)
{
    return m_database->findDrivingClockDomains(&instance, &net, type());
}

std::vector<IClockDomain *> Design::clockDomains() const
{
    return m_database->listAllClockDomains(type());
}

std::unique_ptr<Design> loadDesign(const std::vector<std::string> &files, Clocks clocks, const Reading &reading)
{
    const SourceNetlist source = readNetlist(files, reading);
    limitInstances(source, reading.maxInstances);
    reading.progress.begin("importing " + source.name);
    reading.stats.begin("import");
    auto design = std::make_unique<Design>(source.name, source.form, clocks, blackBoxesOf(*source.netlist),
                                           takeDeviceCensus(*source.netlist, source.form));
    bool whole = false;
    try {
        whole = source.form == Form::PostMap ? design->database().parsePostMapNetlist(source.netlist)
                                             : design->database().parseElaboratedNetlist(source.netlist);
    } catch (const std::out_of_range &) {
        throw refused(source.name, "the name of some net ends in a bit subscript beyond 32 bits");
    } catch (const std::invalid_argument &fault) {
        throw refused(source.name, fault.what());
    }
    if (!whole) {
        throw refused(source.name, "some instance has no module in the netlist");
    }
    const std::string warning = design->devices().warning(source.form);
    if (clocks == Clocks::Yes && !warning.empty()) {
        reading.notes.push_back(warning);
    }
    // The database works on a copy of its own.
    delete source.netlist;
    reading.progress.clear();
    return design;
}

} // namespace kvr::netlistdb::tool
