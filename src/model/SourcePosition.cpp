#include "model/SourcePosition.h"

#include <netlistdb/VDBLineInfo.h>

#include <DataBase.h>
#include <LineFile.h>

#include <cstdint>
#include <utility>

namespace kvr::netlistdb {

std::shared_ptr<const std::string> SourcePaths::share(const char *path)
{
    if (m_last == nullptr || *m_last != path) {
        std::shared_ptr<const std::string> &held = m_all[path];
        if (held == nullptr) {
            held = std::make_shared<const std::string>(path);
        }
        m_last = held;
    }
    return m_last;
}

std::unique_ptr<IVDBLineInfo> sourcePosition(const Verific::DesignObj &object, SourcePaths *paths)
{
    const Verific::linefile_type handle = object.Linefile();
    if (!handle) {
        return nullptr;
    }
    const char *file = Verific::LineFile::GetAbsFileName(handle);
    if (file == nullptr) {
        return nullptr;
    }
    std::shared_ptr<const std::string> path =
        paths != nullptr ? paths->share(file) : std::make_shared<const std::string>(file);
    // The line goes through 32 unsigned bits, whatever integer type the netlist database returns.
    return std::make_unique<VDBLineInfo>(std::move(path),
                                         static_cast<std::uint32_t>(Verific::LineFile::GetLineNo(handle)));
}

} // namespace kvr::netlistdb
