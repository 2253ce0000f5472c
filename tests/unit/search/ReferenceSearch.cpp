#include "ReferenceSearch.h"

#include "search/NaturalOrder.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <stdexcept>

namespace testsupport {

using namespace kvr::netlistdb;

namespace {

bool isUser(IVDBInstance *instance)
{
    return instance->getModule() != nullptr && instance->getModule()->isUserDeclared();
}

std::string lower(std::string text)
{
    for (char &c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

std::string fullName(IVDBNetBase &net, IVDBInstance &instance)
{
    const std::string path = instance.getPath();
    return path.empty() ? net.getName() : path + "/" + net.getName();
}

} // namespace

ReferenceIterator::ReferenceIterator(const VDBSearchParam &param) : m_param(param)
{
    auto *start = dynamic_cast<IVDBInstance *>(m_param.startItem);
    if (start == nullptr || (m_param.userModulesOnly && !isUser(start))) {
        return;
    }
    m_queue.push_back(start);
    if (isUser(start) || !m_param.collapseNonUserModules) {
        collect(start);
    }
}

IVDBItem *ReferenceIterator::getCurrent()
{
    return m_queue.empty() ? nullptr : m_queue.front();
}

void ReferenceIterator::next()
{
    fetchMoreItem(getCurrent());
    if (!m_queue.empty()) {
        m_queue.pop_front();
    }
}

bool ReferenceIterator::isEnd()
{
    return m_queue.empty();
}

IVDBItem *ReferenceIterator::getContext()
{
    return m_context;
}

void ReferenceIterator::setContext(IVDBItem *item)
{
    m_context = item;
}

void ReferenceIterator::fetchMoreItem(IVDBItem *item)
{
    auto *instance = dynamic_cast<IVDBInstance *>(item);
    if (instance == nullptr) {
        return;
    }
    if (instance->getModule() == nullptr) {
        throw std::runtime_error("Unknown item");
    }
    if ((m_param.itemTypes & 8) == 0) {
        return;
    }
    for (IVDBInstance *child : instance->getSubInstances()) {
        if (child == nullptr || (m_param.userModulesOnly && !isUser(child))) {
            continue;
        }
        IVDBInstance *owner = child->getOwnerInstance();
        if (m_param.collapseNonUserModules && owner != nullptr && !isUser(owner)) {
            if (isUser(child)) {
                collect(child);
            }
            continue;
        }
        m_queue.push_back(child);
        if (isUser(child) || !m_param.collapseNonUserModules) {
            collect(child);
        }
    }
}

void ReferenceIterator::collect(IVDBInstance *instance)
{
    IVDBNetlist *module = instance->getModule();
    if (module == nullptr) {
        return;
    }
    std::vector<IVDBNetBase *> members;
    if ((m_param.itemTypes & 32) != 0) {
        members.insert(members.end(), module->getAllNetBus().begin(), module->getAllNetBus().end());
    }
    if ((m_param.itemTypes & 2) != 0) {
        const std::vector<IVDBNet *> nets = module->getNets(false);
        members.insert(members.end(), nets.begin(), nets.end());
    }
    members.erase(std::remove(members.begin(), members.end(), nullptr), members.end());
    if (m_param.sortItems) {
        sort(members);
    }
    for (IVDBNetBase *member : members) {
        if (member->isUserDeclared() || !m_param.userNetsOnly) {
            m_queue.push_back(member);
        }
    }
    if ((m_param.itemTypes & 4) != 0 && !(!isUser(instance) && m_param.userPortsOnly)) {
        m_queue.insert(m_queue.end(), module->getPorts().begin(), module->getPorts().end());
    }
}

void ReferenceIterator::sort(std::vector<IVDBNetBase *> &members) const
{
    if (m_param.nameOrder != 0) {
        std::stable_sort(members.begin(), members.end(), [](IVDBNetBase *a, IVDBNetBase *b) {
            return naturalCompareNoCase(a->getName().c_str(), b->getName().c_str()) == -1;
        });
        if (m_param.nameOrder == 2) {
            std::reverse(members.begin(), members.end());
        }
    }
    if (m_param.widthOrder != 0) {
        std::stable_sort(members.begin(), members.end(),
                         [](IVDBNetBase *a, IVDBNetBase *b) { return a->getWidth() < b->getWidth(); });
        if (m_param.widthOrder == 2) {
            std::reverse(members.begin(), members.end());
        }
    }
}

bool referenceMatch(TreeIterator &iterator, const VDBSearchParam &param)
{
    std::regex expression;
    if (param.filterByName && param.useRegex) {
        expression.assign(param.pattern,
                          param.ignoreCase ? std::regex_constants::icase : std::regex_constants::ECMAScript);
    }
    for (; !iterator.isEnd(); iterator.next()) {
        IVDBItem *item = iterator.getCurrent();
        if (dynamic_cast<IVDBInstance *>(item) != nullptr) {
            iterator.setContext(item);
            return true;
        }
        auto *net = dynamic_cast<IVDBNetBase *>(item);
        if (net == nullptr) {
            continue;
        }
        if (!param.filterByName) {
            return true;
        }
        const std::string name = fullName(*net, dynamic_cast<IVDBInstance &>(*iterator.getContext()));
        std::smatch match;
        if (param.useRegex ? std::regex_search(name, match, expression, std::regex_constants::match_any)
                           : (param.ignoreCase ? lower(name).find(lower(param.pattern)) : name.find(param.pattern)) !=
                                 std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace testsupport
