#pragma once

#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/PooledItem.h>

#include <memory>

namespace kvr::netlistdb {

/// A place in a source file, fixed at construction.
class NETLISTDB_EXPORT VDBLineInfo : public PooledItem<IVDBLineInfo> {
  public:
    /// Copies @p filePath (an absolute path) and keeps @p lineNumber.
    VDBLineInfo(const std::string &filePath, unsigned long long lineNumber);
    /// Shares @p filePath, which is not null.
    VDBLineInfo(std::shared_ptr<const std::string> filePath, unsigned long long lineNumber);
    ~VDBLineInfo() override;
    VDBLineInfo(const VDBLineInfo &) = delete;
    VDBLineInfo &operator=(const VDBLineInfo &) = delete;

    const std::string &getFilePath() const override;
    unsigned long long getLineNumber() const override;

  private:
    unsigned long long m_lineNumber;
    std::shared_ptr<const std::string> m_filePath;
};

} // namespace kvr::netlistdb
