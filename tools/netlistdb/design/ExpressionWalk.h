#pragma once

#include <netlistdb/BFSItemIterator.h>
#include <string>

namespace kvr::netlistdb::tool {

/// A walk whose full names are matched against a regular expression. std::regex takes stack for every character, so the
/// walk stops at a name that is too long for it.
class ExpressionWalk : public TreeIterator {
  public:
    /// Also lets the stack of the main thread grow. @p design names the design in the message.
    ExpressionWalk(IDesignDatabase *database, const VDBSearchParam &param, std::string design);

    /// @throws Failure for a net or bus whose full name is too long.
    IVDBItem *getCurrent() override;
    void next() override { m_walk.next(); }
    bool isEnd() override { return m_walk.isEnd(); }
    IVDBItem *getContext() override { return m_walk.getContext(); }
    /// @throws Failure for an instance whose path is too long.
    void setContext(IVDBItem *item) override;

  private:
    void check(std::size_t length) const;

    BFSItemIterator m_walk;
    std::string m_design;
    std::size_t m_longest;
    std::size_t m_pathLength = 0; ///< of the context
};

} // namespace kvr::netlistdb::tool
