#include <netlistdb/VDBLineInfo.h>

#include "model/LiveItems.h"

namespace kvr::netlistdb {

VDBLineInfo::VDBLineInfo(const std::string &filePath, unsigned long long lineNumber)
    : m_lineNumber(lineNumber), m_filePath(filePath)
{
    countItem(LiveItem::LineInfo);
}

VDBLineInfo::~VDBLineInfo()
{
    uncountItem(LiveItem::LineInfo);
}

const std::string &VDBLineInfo::getFilePath() const
{
    return m_filePath;
}

unsigned long long VDBLineInfo::getLineNumber() const
{
    return m_lineNumber;
}

} // namespace kvr::netlistdb
