#include "model/SourcePosition.h"

#include <netlistdb/VDBLineInfo.h>

#include <DataBase.h>
#include <LineFile.h>

#include <cstdint>

namespace kvr::netlistdb {

std::unique_ptr<IVDBLineInfo> sourcePosition(const Verific::DesignObj &object)
{
    const Verific::linefile_type handle = object.Linefile();
    if (!handle) {
        return nullptr;
    }
    const char *file = Verific::LineFile::GetAbsFileName(handle);
    if (file == nullptr) {
        return nullptr;
    }
    // The line goes through 32 unsigned bits, whatever integer type the netlist database returns.
    return std::make_unique<VDBLineInfo>(file, static_cast<std::uint32_t>(Verific::LineFile::GetLineNo(handle)));
}

} // namespace kvr::netlistdb
