#include "design/ExpressionWalk.h"

#include "base/Failure.h"

#include <algorithm>
#include <fmt/format.h>
#include <netlistdb/IVDBInstance.h>
#include <sys/resource.h>

namespace kvr::netlistdb::tool {

namespace {

/// A process has at least 128 MiB of address space below its main stack.
constexpr rlim_t STACK = rlim_t{100} * 1024 * 1024;
/// What a character of a name takes: a good kilobyte, more with nested groups and in builds with sanitizers.
constexpr rlim_t STACK_PER_CHARACTER = rlim_t{12} * 1024;

/// Lets the stack grow as far as is safe, and answers how long a name it takes.
std::size_t longestName()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) != 0) {
        return 1024;
    }
    if (limit.rlim_cur < STACK) {
        limit.rlim_cur = std::min(STACK, limit.rlim_max);
        setrlimit(RLIMIT_STACK, &limit);
        getrlimit(RLIMIT_STACK, &limit);
    }
    return std::min(STACK, limit.rlim_cur) / STACK_PER_CHARACTER;
}

} // namespace

ExpressionWalk::ExpressionWalk(IDesignDatabase *database, const VDBSearchParam &param, std::string design)
    : m_walk(database, param), m_design(std::move(design)), m_longest(longestName())
{
}

IVDBItem *ExpressionWalk::getCurrent()
{
    IVDBItem *item = m_walk.getCurrent();
    if (item != nullptr && item->getItemType() != ITEM_INSTANCE) {
        check(m_pathLength + item->getName().size());
    }
    return item;
}

void ExpressionWalk::setContext(IVDBItem *item)
{
    m_walk.setContext(item);
    m_pathLength = 0;
    for (auto *each = static_cast<IVDBInstance *>(item); each != nullptr; each = each->getOwnerInstance()) {
        m_pathLength += each->getName().size() + 1;
    }
    check(m_pathLength);
}

void ExpressionWalk::check(std::size_t length) const
{
    if (length > m_longest) {
        throw refused(m_design, fmt::format("some full name has more than {} characters, which is too long for --regex "
                                            "and --glob",
                                            m_longest));
    }
}

} // namespace kvr::netlistdb::tool
