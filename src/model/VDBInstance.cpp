#include <netlistdb/VDBInstance.h>

#include "model/LiveItems.h"
#include "netlist/verific_queries.h"

#include <DataBase.h>

#include <stdexcept>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

/// The instance as a VDBInstance when it is exactly that, whose behaviour is known; null for a class derived from it.
VDBInstance *asPlainInstance(IVDBInstance *instance)
{
    return instance != nullptr && typeid(*instance) == typeid(VDBInstance) ? static_cast<VDBInstance *>(instance)
                                                                           : nullptr;
}

} // namespace

VDBInstance::VDBInstance(IVDBNetlist *module, IVDBInstance *owner)
    : m_owner(owner), m_module(module), m_depthIsChainLength(owner == nullptr)
{
    countItem(LiveItem::Instance);
}

VDBInstance::VDBInstance(IVDBNetlist *module, IVDBInstance *owner, const Verific::Instance *inst)
    : m_owner(owner), m_module(module)
{
    if (inst == nullptr) {
        throw std::invalid_argument("inst is nullptr");
    }
    if (const char *name = inst->Name()) {
        m_name = name;
    }
    m_parameterCount = verific_queries::parameterCount(*inst);
    // An owner whose depth is known to be the length of its owner chain spares the walk, which would make deep trees
    // quadratic to build.
    const VDBInstance *plainOwner = asPlainInstance(owner);
    if (owner == nullptr) {
        m_depthIsChainLength = true;
    } else if (plainOwner != nullptr && plainOwner->m_depthIsChainLength) {
        m_depth = plainOwner->m_depth + 1;
        m_depthIsChainLength = true;
    } else {
        for (const IVDBInstance *ancestor = owner; ancestor != nullptr; ancestor = ancestor->getOwnerInstance()) {
            ++m_depth;
        }
    }
    countItem(LiveItem::Instance);
}

VDBInstance::~VDBInstance()
{
    deleteSubInstances();
    uncountItem(LiveItem::Instance);
}

void VDBInstance::deleteSubInstances()
{
    struct Level {
        VDBInstance *instance;
        std::size_t next;
    };
    m_owner = nullptr;
    m_module = nullptr;
    if (m_subInstances.empty()) {
        return;
    }
    // The steps of the nested destructors, in their order, on a stack of our own: trees may be deeper than the
    // program's stack. Instances of other classes run their own destructor.
    std::vector<Level> levels{{this, 0}};
    while (!levels.empty()) {
        Level &level = levels.back();
        VDBInstance *const instance = level.instance;
        if (level.next == instance->m_subInstances.size()) {
            instance->m_subInstances.clear();
            levels.pop_back();
            if (instance != this) {
                delete instance;
            }
            continue;
        }
        IVDBInstance *const child = instance->m_subInstances[level.next++];
        VDBInstance *const plain = asPlainInstance(child);
        if (plain != nullptr && !plain->m_subInstances.empty()) {
            plain->m_owner = nullptr;
            plain->m_module = nullptr;
            levels.push_back({plain, 0});
        } else {
            delete child;
        }
    }
}

const std::string &VDBInstance::getName() const
{
    return m_name;
}

std::uint32_t VDBInstance::getItemType() const
{
    return ITEM_INSTANCE;
}

unsigned long long VDBInstance::getDepth() const
{
    return m_depth;
}

IVDBInstance *VDBInstance::getOwnerInstance() const
{
    return m_owner;
}

IVDBNetlist *VDBInstance::getModule() const
{
    return m_module;
}

std::string VDBInstance::getPath() const
{
    std::vector<const std::string *> names;
    std::size_t length = m_name.size();
    for (const IVDBInstance *ancestor = m_owner; ancestor != nullptr; ancestor = ancestor->getOwnerInstance()) {
        const std::string &name = ancestor->getName();
        if (!name.empty()) {
            names.push_back(&name);
            length += name.size() + 1;
        }
    }
    std::string path;
    path.reserve(length);
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        path += **name;
        path += '/';
    }
    path += m_name;
    return path;
}

const std::vector<IVDBInstance *> &VDBInstance::getSubInstances() const
{
    return m_subInstances;
}

bool VDBInstance::addSubInstance(IVDBInstance *child)
{
    m_subInstances.push_back(child);
    return true;
}

std::uint32_t VDBInstance::getParameterCount() const
{
    return m_parameterCount;
}

void VDBInstance::reserveSubInstances(std::size_t count)
{
    m_subInstances.reserve(count);
}

} // namespace kvr::netlistdb
