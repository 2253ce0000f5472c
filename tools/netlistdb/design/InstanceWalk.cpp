#include "design/InstanceWalk.h"

#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/NameText.h>

namespace kvr::netlistdb::tool {

InstanceWalk::InstanceWalk(IVDBInstance &root, bool userModulesOnly)
    : m_userModulesOnly(userModulesOnly), m_path(root.getPath())
{
    m_stack.push_back({&root, nextVisible(root, 0), 0});
}

bool InstanceWalk::isLast(std::size_t level) const
{
    if (level == 0) {
        return true;
    }
    const Place &owner = m_stack[level - 1];
    return owner.nextChild == owner.instance->getSubInstances().size();
}

void InstanceWalk::next()
{
    while (!m_stack.empty()) {
        Place &place = m_stack.back();
        const std::vector<IVDBInstance *> &children = place.instance->getSubInstances();
        if (place.nextChild < children.size()) {
            IVDBInstance *child = children[place.nextChild];
            place.nextChild = nextVisible(*place.instance, place.nextChild + 1);
            push(child);
            return;
        }
        m_path.resize(place.pathLength);
        m_stack.pop_back();
    }
}

void InstanceWalk::skip()
{
    m_stack.back().nextChild = m_stack.back().instance->getSubInstances().size();
    next();
}

void InstanceWalk::push(IVDBInstance *instance)
{
    m_stack.push_back({instance, nextVisible(*instance, 0), m_path.size()});
    const std::string_view name = nameText(*instance);
    if (!name.empty()) {
        m_path += m_path.empty() ? "" : "/";
        m_path += name;
    }
}

std::size_t InstanceWalk::nextVisible(const IVDBInstance &owner, std::size_t child) const
{
    const std::vector<IVDBInstance *> &children = owner.getSubInstances();
    while (m_userModulesOnly && child < children.size() && !children[child]->getModule()->isUserDeclared()) {
        ++child;
    }
    return child;
}

} // namespace kvr::netlistdb::tool
