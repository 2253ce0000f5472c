#include "design/Design.h"

#include "base/Progress.h"
#include "base/Stats.h"
#include "design/InstanceLimit.h"

#include <DataBase.h>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

Design::Design(std::string name, Form form, std::shared_ptr<DesignDatabase> database, const Verific::Netlist &netlist,
               Clocks clocks)
    : m_name(std::move(name)), m_form(form), m_sources(netlist), m_devices(takeDeviceCensus(netlist, form)),
      m_database(std::move(database)), m_hasClocks(clocks == Clocks::Yes)
{
}

Design::~Design()
{
    m_clocks.reset();
    const bool isLast = m_database.use_count() == 1;
    m_database.reset();
    if (isLast) {
        Verific::Libset::Reset();
    }
}

void Design::useWorkingCopy()
{
    m_sources.replaceTop(top(), *m_database->workingCopy(type()));
}

IVDBNetlist &Design::top()
{
    return *m_database->getTopModule(type());
}

IVDBInstance &Design::root()
{
    return *m_database->getRoot(type());
}

ModuleNames &Design::names(IVDBNetlist &module)
{
    std::unique_ptr<ModuleNames> &names = m_names[&module];
    if (names == nullptr) {
        names = std::make_unique<ModuleNames>(module, m_sources.of(module));
    }
    return *names;
}

const std::string &Design::nameOf(const IVDBNetlist &module)
{
    const auto [name, isNew] = m_moduleNames.try_emplace(&module);
    if (isNew) {
        name->second = m_sources.userNameOf(module);
    }
    return name->second;
}

ItemFacts Design::factsOf(const IVDBInstance &instance) const
{
    return tool::factsOf(m_sources.of(instance));
}

IClockDomain *Design::firstClockOf(IVDBInstance &instance, IVDBNet &net)
{
    return m_database->findDrivingClockDomains(&instance, &net, type());
}

const analysis::ClockMap &Design::clocks()
{
    if (m_clocks == nullptr) {
        m_clocks = std::make_unique<const analysis::ClockMap>(*m_database, type());
    }
    return *m_clocks;
}

std::size_t Design::clockCount()
{
    return m_clocks != nullptr ? m_clocks->clocks().size() : analysis::countClocks(*m_database, type());
}

namespace {

/// Whether the database keeps its working copy of the netlist. The copy of a post-map netlist is a whole design, and
/// the netlist can be moved into it; that of an elaborated netlist is its top alone.
bool keepsWorkingCopy(Form form, Clocks clocks)
{
    return clocks == Clocks::Yes || form == Form::PostMap;
}

std::unique_ptr<Design> import(const SourceNetlist &source, const std::shared_ptr<DesignDatabase> &database,
                               Clocks clocks, const Reading &reading)
{
    limitInstances(source, reading.maxInstances);
    reading.progress.begin("importing " + source.name);
    reading.stats.begin("import");
    const std::string note = noteOnHierarchy(*source.netlist, source.form);
    auto design = std::make_unique<Design>(source.name, source.form, database, *source.netlist, clocks);
    const bool keepsCopy = keepsWorkingCopy(source.form, clocks);
    source.netlist->SetDisposable(keepsCopy ? 1 : 0);
    bool whole = false;
    try {
        whole = source.form == Form::PostMap ? database->parsePostMapNetlist(source.netlist)
                                             : database->parseElaboratedNetlist(source.netlist);
    } catch (const std::out_of_range &) {
        throw refused(source.name, "the name of some net ends in a bit subscript beyond 32 bits");
    } catch (const std::invalid_argument &fault) {
        throw refused(source.name, fault.what());
    }
    if (!whole) {
        throw refused(source.name, "some instance has no module in the netlist");
    }
    if (!note.empty()) {
        reading.notes.push_back(note);
    }
    if (keepsCopy) {
        design->useWorkingCopy();
        delete source.netlist;
    }
    reading.progress.clear();
    return design;
}

} // namespace

std::unique_ptr<Design> loadDesign(const std::vector<std::string> &files, Clocks clocks, const Reading &reading,
                                   std::shared_ptr<DesignDatabase> database)
{
    const SourceNetlist source = readNetlist(files, reading);
    if (database == nullptr) {
        database = std::make_shared<DesignDatabase>(keepsWorkingCopy(source.form, clocks));
    }
    auto design = import(source, database, clocks, reading);
    const std::string warning = design->devices().warning();
    if (clocks == Clocks::Yes && !warning.empty()) {
        reading.notes.push_back(warning);
    }
    return design;
}

DesignPair loadDesignPair(const std::vector<std::string> &elaborated, const std::string &postMap,
                          const Reading &reading, std::shared_ptr<DesignDatabase> database)
{
    if (database == nullptr) {
        database = std::make_shared<DesignDatabase>(true);
    }
    DesignPair pair;
    for (const Form form : {Form::Elaborated, Form::PostMap}) {
        Reading own = reading;
        own.form = form;
        const bool isElaborated = form == Form::Elaborated;
        const SourceNetlist source = readNetlist(isElaborated ? elaborated : std::vector<std::string>{postMap}, own);
        (isElaborated ? pair.elaborated : pair.postMap) = import(source, database, Clocks::Yes, own);
    }
    return pair;
}

} // namespace kvr::netlistdb::tool
