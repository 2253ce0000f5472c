// Whatever the bytes of a file, restoring it answers null and leaves the global libset empty, or answers a netlist that
// can be walked, imported in both forms, asked for clocks, searched, and saved and restored again as the same.

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistDump.h"
#include "tests/unit/platform/SavedFileBytes.h"

#include <netlistdb/netlistdb.h>

#include <DataBase.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

using namespace kvr::netlistdb;

namespace {

/// A few netlists that instantiate each other many times over unfold to more than any memory holds; larger trees than
/// this one are not built.
constexpr std::size_t mostInstances = 2000;
/// Of the instances, so many are asked for the clocks of so many nets each.
constexpr std::size_t mostAskedInstances = 8;
constexpr std::size_t mostAskedNets = 16;

void expect(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// Number of instances below @p netlist, or a number above mostInstances.
std::size_t unfoldedSize(const Verific::Netlist *netlist, std::map<const Verific::Netlist *, std::size_t> &known)
{
    const auto [entry, isNew] = known.emplace(netlist, 0);
    if (isNew) {
        std::size_t size = 0;
        Verific::MapIter iter;
        const Verific::Instance *instance = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (netlist, iter, instance) {
            size += 1 + (instance->View() != nullptr ? unfoldedSize(instance->View(), known) : 0);
            size = std::min(size, mostInstances + 1);
        }
        entry->second = size;
    }
    return entry->second;
}

void askForClocks(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    std::vector<IVDBInstance *> instances{database.getRoot(type)};
    for (std::size_t at = 0; at < instances.size() && at < mostAskedInstances; ++at) {
        std::vector<IVDBNet *> nets = instances[at]->getModule()->getNets(at % 2 == 0);
        nets.resize(std::min(nets.size(), mostAskedNets));
        for (IVDBNet *net : nets) {
            const IClockDomain *domain = database.findDrivingClockDomains(instances[at], net, type);
            expect(domain == nullptr || (domain->getNet() != nullptr && domain->getInstance() != nullptr));
        }
        const std::vector<IVDBInstance *> &children = instances[at]->getSubInstances();
        instances.insert(instances.end(), children.begin(), children.end());
    }
}

/// Answers the number of instances that a search for everything finds.
std::size_t searchAll(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE type)
{
    VDBSearchParam param;
    param.startItem = database.getRoot(type);
    param.sortItems = true;
    param.nameOrder = SORT_ASCENDING;
    SearchResults results(database.search(param));
    std::size_t instances = 0;
    while (results.next()) {
        IVDBItem *item = results.getCurrent();
        if (auto *instance = dynamic_cast<IVDBInstance *>(item)) {
            static_cast<void>(instance->getPath());
            ++instances;
        } else if (auto *net = dynamic_cast<IVDBNetBase *>(item)) {
            expect(!VDBHelper::getNetFullName(net, static_cast<IVDBInstance *>(results.getContext())).empty() ||
                   net->getName().empty());
            expect(net->isBus() == (dynamic_cast<IVDBNetBus *>(item) != nullptr) || net->getWidth() != 1);
            if (IVDBLineInfo *position = net->getLineInfo()) {
                expect(net->isUserDeclared() && position->getFilePath().c_str() != nullptr);
            }
        }
    }
    return instances;
}

void useSource(DesignDatabase &database, Verific::Netlist *top, IDesignDatabase::SOURCE_TYPE type, std::size_t unfolded)
{
    try {
        const bool isElaborated = type == IDesignDatabase::SOURCE_ELABORATED;
        const bool isComplete = isElaborated ? database.parseElaboratedNetlist(top) : database.parsePostMapNetlist(top);
        expect(database.isSourceLoaded(type));
        const std::size_t found = searchAll(database, type);
        if (isElaborated && isComplete) {
            expect(found <= unfolded + 1);
        }
        askForClocks(database, type);
        expect(database.reset(type));
    } catch (const std::out_of_range &) {
        // A bit subscript beyond all integers.
        database.reset(type);
    } catch (const std::invalid_argument &) {
        // A clock net without an item.
        database.reset(type);
    }
    expect(!database.isSourceLoaded(type));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const platformtest::ScratchDirectory directory;
    const std::string given = directory.file("given");
    const std::string saved = directory.file("saved");
    const testsupport::LibsetGuard guard;

    platformtest::writeBytes(given, std::string(reinterpret_cast<const char *>(data), size));
    Verific::Netlist *top = Verific::Netlist::RestoreFromFile(given.c_str());
    if (top == nullptr) {
        expect(Verific::Libset::Global()->GetLibraries()->Size() == 0);
        return 0;
    }
    expect(top->Owner() != nullptr && top->Owner()->Owner() != nullptr);
    const std::string text = testsupport::dumpHierarchy(top);
    expect(top->SaveToFile(saved.c_str()) != 0);

    std::map<const Verific::Netlist *, std::size_t> known;
    const std::size_t unfolded = unfoldedSize(top, known);
    const auto itemsBefore = liveItemCounts();
    if (unfolded <= mostInstances) {
        DesignDatabase database(true);
        useSource(database, top, IDesignDatabase::SOURCE_POST_MAP, unfolded);
        useSource(database, top, IDesignDatabase::SOURCE_ELABORATED, unfolded);
    }
    expect(liveItemCounts() == itemsBefore);

    testsupport::LibsetGuard::clear();
    expect(testsupport::dumpHierarchy(Verific::Netlist::RestoreFromFile(saved.c_str())) == text);
    return 0;
}
