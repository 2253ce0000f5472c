#include <netlistdb/VDBInstance.h>

#include "model/InstanceTraits.h"
#include "model/LiveItems.h"
#include "model/NameBlock.h"
#include "netlist/verific_queries.h"

#include <netlistdb/NameText.h>

#include <DataBase.h>

#include <stdexcept>
#include <typeinfo>

namespace kvr::netlistdb {

namespace {

// Never destroyed: instances may be used and deleted at any time while the process ends.
const std::vector<IVDBInstance *> &NO_SUB_INSTANCES = *new std::vector<IVDBInstance *>;

/// The instance as a VDBInstance when it is exactly that, whose behaviour is known; null for a class derived from it.
VDBInstance *asPlainInstance(IVDBInstance *instance)
{
    return instance != nullptr && typeid(*instance) == typeid(VDBInstance) ? static_cast<VDBInstance *>(instance)
                                                                           : nullptr;
}

InstanceTraits traitsOf(const Verific::Instance *inst)
{
    if (inst == nullptr) {
        throw std::invalid_argument("inst is nullptr");
    }
    return {inst->Name(), verific_queries::parameterCount(*inst)};
}

} // namespace

VDBInstance::VDBInstance(IVDBNetlist *module, IVDBInstance *owner)
    : m_owner(owner), m_module(module), m_depthIsChainLength(owner == nullptr)
{
    countItem(LiveItem::Instance);
}

VDBInstance::VDBInstance(IVDBNetlist *module, IVDBInstance *owner, const Verific::Instance *inst)
    : VDBInstance(module, owner, traitsOf(inst))
{
}

VDBInstance::VDBInstance(IVDBNetlist *module, IVDBInstance *owner, const InstanceTraits &traits)
    : m_name(traits.shareName()), m_owner(owner), m_module(module), m_parameterCount(traits.parameterCount())
{
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
    NameBlock::release(m_name);
    uncountItem(LiveItem::Instance);
}

void VDBInstance::deleteSubInstances()
{
    // The steps of the nested destructors, in their order, without recursion, since trees may be deeper than the
    // program's stack, and without memory of its own, since there may be none. While the children of a child are
    // deleted, the instance above keeps the way back in its owner and its place in the upper half of its depth.
    constexpr unsigned PLACE_SHIFT = 32;
    constexpr unsigned long long DEPTH_MASK = (1ull << PLACE_SHIFT) - 1;
    m_owner = nullptr;
    m_module = nullptr;
    VDBInstance *above = nullptr;
    VDBInstance *instance = this;
    std::size_t place = 0;
    for (;;) {
        if (place == instance->getSubInstances().size()) {
            instance->m_subInstances.reset();
            if (instance == this) {
                return;
            }
            const VDBInstance *const done = instance;
            instance = above;
            above = static_cast<VDBInstance *>(instance->m_owner);
            instance->m_owner = nullptr;
            place = static_cast<std::size_t>(instance->m_depth >> PLACE_SHIFT);
            instance->m_depth &= DEPTH_MASK;
            delete done;
            continue;
        }
        IVDBInstance *const child = (*instance->m_subInstances)[place++];
        VDBInstance *const plain = asPlainInstance(child);
        if (plain == nullptr || plain->m_subInstances == nullptr) {
            delete child; // one of another class runs a destructor of its own
            continue;
        }
        instance->m_owner = above;
        instance->m_depth |= static_cast<unsigned long long>(place) << PLACE_SHIFT;
        above = instance;
        instance = plain;
        instance->m_owner = nullptr;
        instance->m_module = nullptr;
        place = 0;
    }
}

const std::string &VDBInstance::getName() const
{
    return NameBlock::string(m_name);
}

std::string_view VDBInstance::nameText() const
{
    return NameBlock::text(m_name);
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
    std::vector<std::string_view> names;
    const std::string_view own = netlistdb::nameText(*this);
    std::size_t length = own.size();
    for (const IVDBInstance *ancestor = m_owner; ancestor != nullptr; ancestor = ancestor->getOwnerInstance()) {
        const std::string_view name = netlistdb::nameText(*ancestor);
        if (!name.empty()) {
            names.push_back(name);
            length += name.size() + 1;
        }
    }
    std::string path;
    path.reserve(length);
    for (auto name = names.rbegin(); name != names.rend(); ++name) {
        path += *name;
        path += '/';
    }
    path += own;
    return path;
}

const std::vector<IVDBInstance *> &VDBInstance::getSubInstances() const
{
    return m_subInstances != nullptr ? *m_subInstances : NO_SUB_INSTANCES;
}

bool VDBInstance::addSubInstance(IVDBInstance *child)
{
    subInstances().push_back(child);
    return true;
}

std::uint32_t VDBInstance::getParameterCount() const
{
    return m_parameterCount;
}

void VDBInstance::reserveSubInstances(std::size_t count)
{
    if (count != 0) {
        subInstances().reserve(count);
    }
}

std::vector<IVDBInstance *> &VDBInstance::subInstances()
{
    if (m_subInstances == nullptr) {
        m_subInstances = std::make_unique<std::vector<IVDBInstance *>>();
    }
    return *m_subInstances;
}

} // namespace kvr::netlistdb
