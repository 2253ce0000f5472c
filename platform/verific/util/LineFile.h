#pragma once

#include "Export.h"

#include <cstdint>

namespace Verific {

/// Handle of a source position; 0 means none. Test it only with `!handle`.
using linefile_type = std::uint64_t;

/// The process-wide table of source files and the positions in them.
///
/// A handle stays harmless for the life of the process: once its file has been cleared from the table it has no file
/// and line 0, and it never comes to mean another file.
class VERIFIC_EXPORT LineFile {
  public:
    /// Makes a handle for line @p line (any 32-bit value) of @p file. A relative path is made absolute against the
    /// working directory at its first mention (until the tables are cleared). A null or empty file gives 0.
    static linefile_type EncodeLineFile(const char *file, unsigned line);
    /// The same with the absolute path already known, as a saved netlist records it (null: unknown).
    static linefile_type EncodeLineFile(const char *file, const char *absolute, unsigned line);
    /// Handle of line @p line in the file of @p handle.
    static linefile_type OtherLine(linefile_type handle, unsigned line);
    /// Absolute path of the handle's file, or null when it is unknown. Lives until the tables are cleared.
    static const char *GetAbsFileName(linefile_type handle);
    /// Makes relative paths absolute against @p directory instead, those that are mentioned from then on; null or
    /// empty: against the working directory. Stays when the tables are cleared. Embedded database only.
    static void SetRoot(const char *directory);
    /// True when that path was made from a relative one and the working directory, and means nothing elsewhere.
    /// Embedded database only.
    static bool IsMadeAbsolute(linefile_type handle);
    /// Path of the handle's file as it was given, or null. Lives until the tables are cleared.
    static const char *GetFileName(linefile_type handle);
    /// Line number, 0 when the file is not known.
    static unsigned GetLineNo(linefile_type handle);

    /// Forgets every file; handles made so far have none from then on.
    static void DeleteAllLineFiles();
    /// Forgets which number a file has: the next mention gives it a new one. Handles made so far keep their file.
    static void ResetFileIdMaps();
};

} // namespace Verific
