#pragma once

#include "ReadFault.h"

#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/stat.h>

namespace kvr::netlistdb::yosys {

/// A regular file that is read piece by piece.
class JsonFile {
  public:
    /// @p fault must outlive the object.
    /// @throws ReadError  when the file cannot be read or is too large for the parser
    JsonFile(const std::string &path, const ReadFault &fault);
    ~JsonFile();
    JsonFile(const JsonFile &) = delete;
    JsonFile &operator=(const JsonFile &) = delete;

    std::uint64_t size() const { return static_cast<std::uint64_t>(m_status.st_size); }
    /// Copies the @p size bytes from @p begin on to @p to.
    /// @throws ReadError  when they cannot be read
    void read(std::uint64_t begin, std::size_t size, char *to) const;
    /// False when somebody has written to the file since it was opened.
    bool isUnchanged() const;

  private:
    /// A file that is not open yet.
    explicit JsonFile(const ReadFault &fault) : m_fault(fault) {}
    [[noreturn]] void fail(const std::string &reason) const;

    const ReadFault &m_fault;
    int m_descriptor = -1;
    struct stat m_status {}; ///< when it was opened
};

} // namespace kvr::netlistdb::yosys
