#include <netlistdb/VDBLineInfo.h>

#include "model/LiveItems.h"

#include <utility>

namespace kvr::netlistdb {

VDBLineInfo::VDBLineInfo(const std::string &filePath, unsigned long long lineNumber)
    : VDBLineInfo(std::make_shared<const std::string>(filePath), lineNumber)
{
}

VDBLineInfo::VDBLineInfo(std::shared_ptr<const std::string> filePath, unsigned long long lineNumber)
    : m_lineNumber(lineNumber), m_filePath(std::move(filePath))
{
    countItem(LiveItem::LineInfo);
}

VDBLineInfo::~VDBLineInfo()
{
    uncountItem(LiveItem::LineInfo);
}

const std::string &VDBLineInfo::getFilePath() const
{
    return *m_filePath;
}

unsigned long long VDBLineInfo::getLineNumber() const
{
    return m_lineNumber;
}

} // namespace kvr::netlistdb
