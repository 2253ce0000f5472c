#pragma once

#include <DataBase.h>
#include <LineFile.h>

namespace testsupport {

/// Gives a test an empty netlist database, and leaves one behind.
class LibsetGuard {
  public:
    LibsetGuard() { clear(); }
    ~LibsetGuard() { clear(); }
    LibsetGuard(const LibsetGuard &) = delete;
    LibsetGuard &operator=(const LibsetGuard &) = delete;

    static void clear()
    {
        Verific::Libset::Reset();
        Verific::LineFile::DeleteAllLineFiles();
        Verific::LineFile::ResetFileIdMaps();
    }
};

} // namespace testsupport
