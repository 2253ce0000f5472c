#include "analysis/SourcePlaces.h"

#include <DataBase.h>
#include <LineFile.h>

namespace kvr::netlistdb::analysis {

SourcePlace placeOf(const Verific::DesignObj &object)
{
    const Verific::linefile_type position = object.Linefile();
    if (!position) {
        return {};
    }
    const char *const file = Verific::LineFile::GetAbsFileName(position);
    return file != nullptr ? SourcePlace{file, Verific::LineFile::GetLineNo(position)} : SourcePlace();
}

} // namespace kvr::netlistdb::analysis
