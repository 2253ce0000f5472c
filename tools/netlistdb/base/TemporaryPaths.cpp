#include "base/TemporaryPaths.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>

namespace kvr::netlistdb::tool {

namespace {

std::string pattern(const std::string &directory)
{
    return (std::filesystem::path(directory) / ".netlistdb.XXXXXX").string();
}

void removeTree(const std::string &path)
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

} // namespace

TemporaryPaths::~TemporaryPaths()
{
    for (const std::string &path : m_paths) {
        removeTree(path);
    }
}

int TemporaryPaths::makeFile(const std::string &directory, std::string &path)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    path = pattern(directory);
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    if (descriptor >= 0) {
        m_paths.insert(path);
    }
    return descriptor;
}

bool TemporaryPaths::makeDirectory(const std::string &parent, std::string &path)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    path = pattern(parent);
    if (mkdtemp(path.data()) == nullptr) {
        return false;
    }
    m_paths.insert(path);
    return true;
}

bool TemporaryPaths::moveTo(const std::string &path, const std::string &target)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    if (std::rename(path.c_str(), target.c_str()) != 0) {
        return false;
    }
    m_paths.erase(path);
    return true;
}

void TemporaryPaths::remove(const std::string &path)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    removeTree(path);
    m_paths.erase(path);
}

void TemporaryPaths::removeForGood()
{
    m_lock.lock();
    for (const std::string &path : m_paths) {
        // Under another name first: a thread that still works in a directory can make nothing in it any more.
        const std::string doomed = path + "~";
        removeTree(std::rename(path.c_str(), doomed.c_str()) == 0 ? doomed : path);
    }
}

} // namespace kvr::netlistdb::tool
