#pragma once

#include <mutex>
#include <set>
#include <string>

namespace kvr::netlistdb::tool {

/// Makes temporary files and directories, and knows them all, so that a process that ends early leaves none behind.
/// Any thread may call any member.
class TemporaryPaths {
  public:
    TemporaryPaths() = default;
    ~TemporaryPaths();
    TemporaryPaths(const TemporaryPaths &) = delete;
    TemporaryPaths &operator=(const TemporaryPaths &) = delete;

    /// Makes an empty file in @p directory and opens it for writing. Returns its descriptor, or -1 with errno set.
    int makeFile(const std::string &directory, std::string &path);
    /// Makes a directory in @p parent. Returns false with errno set when that fails.
    bool makeDirectory(const std::string &parent, std::string &path);
    /// Gives the temporary file @p path its final name, which it takes over from what stood there. Returns false with
    /// errno set when that fails; the file is then still a temporary one.
    bool moveTo(const std::string &path, const std::string &target);
    /// Removes @p path with everything in it.
    void remove(const std::string &path);
    /// Removes everything. For a process that ends now: other threads that come here afterwards wait for ever.
    void removeForGood();

  private:
    std::mutex m_lock; ///< guards what follows, and the making and moving itself
    std::set<std::string> m_paths;
};

} // namespace kvr::netlistdb::tool
