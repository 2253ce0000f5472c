#include "ClockTest.h"

namespace clock_test {

std::vector<IVDBNet *> netsOf(const IVDBInstance *instance)
{
    std::vector<IVDBNet *> nets = instance->getModule()->getNets(false);
    const std::vector<IVDBNet *> members = instance->getModule()->getNets(true);
    nets.insert(nets.end(), members.begin(), members.end());
    return nets;
}

IVDBNet *netOf(const IVDBInstance *instance, const std::string &name)
{
    for (IVDBNet *net : netsOf(instance)) {
        if (net->getName() == name) {
            return net;
        }
    }
    return nullptr;
}

IVDBInstance *instanceAt(IVDBInstance *root, const std::string &path)
{
    for (IVDBInstance *instance : treeOf(root)) {
        if (instance->getPath() == path) {
            return instance;
        }
    }
    return nullptr;
}

std::vector<IVDBInstance *> treeOf(IVDBInstance *root)
{
    std::vector<IVDBInstance *> instances;
    if (root != nullptr) {
        instances.push_back(root);
    }
    for (std::size_t at = 0; at < instances.size(); ++at) {
        const std::vector<IVDBInstance *> children = instances[at]->getSubInstances();
        instances.insert(instances.end(), children.begin(), children.end());
    }
    return instances;
}

std::string nameOf(const IClockDomain *domain)
{
    return domain != nullptr ? domain->getName() : "none";
}

std::string nameOf(const DesignDatabase::InstanceNet &pair)
{
    const std::string path = pair.first != nullptr ? pair.first->getPath() : "null";
    const std::string net = pair.second != nullptr ? pair.second->getName() : "";
    return path.empty() ? net : path + '/' + net;
}

NamesByClock pairCacheOf(const DesignDatabase &database)
{
    NamesByClock names;
    for (const auto &[domain, pairs] : database.drivingClockCache()) {
        for (const auto &pair : pairs.pairs()) {
            names[nameOf(domain)].insert(nameOf(pair));
        }
    }
    return names;
}

NamesByClock instanceCacheOf(const DesignDatabase &database)
{
    NamesByClock names;
    for (const auto &[instance, domain] : database.elaboratedInstanceCache()) {
        names[nameOf(domain)].insert(instance->getPath());
    }
    return names;
}

IVDBInstance *ClockTest::instance(const std::string &path, IDesignDatabase::SOURCE_TYPE type)
{
    return instanceAt(database->getRoot(type), path);
}

std::string ClockTest::clockOf(const std::string &path, const std::string &net, IDesignDatabase::SOURCE_TYPE type)
{
    IVDBInstance *const in = instance(path, type);
    IVDBNet *const item = in != nullptr ? netOf(in, net) : nullptr;
    return item != nullptr ? nameOf(database->findDrivingClockDomains(in, item, type)) : "no such net";
}

Names ClockTest::clocks(IDesignDatabase::SOURCE_TYPE type)
{
    Names names;
    for (const IClockDomain *domain : database->listAllClockDomains(type)) {
        names.insert(domain->getName());
    }
    return names;
}

} // namespace clock_test
