#include "JsonFile.h"

#include <cerrno>
#include <cstring>
#include <simdjson.h>

#include <fcntl.h>
#include <unistd.h>

namespace kvr::netlistdb::yosys {

namespace {

bool isSameTime(const timespec &left, const timespec &right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

} // namespace

JsonFile::JsonFile(const std::string &path, const ReadFault &fault) : m_fault(fault)
{
    // Opening a device may do something to it, and a pipe without a writer would never open.
    if (::stat(path.c_str(), &m_opened) != 0) {
        fail(std::strerror(errno));
    }
    if (!S_ISREG(m_opened.st_mode)) {
        fail(S_ISDIR(m_opened.st_mode) ? "it is a directory" : "it is no regular file");
    }
    m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_descriptor < 0) {
        fail(std::strerror(errno));
    }
    try {
        if (::fstat(m_descriptor, &m_opened) != 0) {
            fail(std::strerror(errno));
        }
        m_size = static_cast<std::uint64_t>(m_opened.st_size);
        if (m_size > simdjson::SIMDJSON_MAXSIZE_BYTES) {
            m_fault.fail("the file is larger than 4 GiB");
        }
    } catch (...) {
        ::close(m_descriptor);
        throw;
    }
}

JsonFile::~JsonFile()
{
    ::close(m_descriptor);
}

void JsonFile::read(std::uint64_t begin, std::size_t size, char *to) const
{
    while (size > 0) {
        const ssize_t count = ::pread(m_descriptor, to, size, static_cast<off_t>(begin));
        if (count == 0) {
            fail("it became shorter meanwhile");
        }
        if (count < 0 && errno != EINTR) {
            fail(std::strerror(errno));
        }
        if (count > 0) {
            to += count;
            begin += static_cast<std::uint64_t>(count);
            size -= static_cast<std::size_t>(count);
        }
    }
}

bool JsonFile::isUnchanged() const
{
    struct stat now {};
    return ::fstat(m_descriptor, &now) == 0 && now.st_size == m_opened.st_size &&
           isSameTime(now.st_mtim, m_opened.st_mtim) && isSameTime(now.st_ctim, m_opened.st_ctim);
}

void JsonFile::fail(const std::string &reason) const
{
    m_fault.fail("cannot read the file: " + reason);
}

} // namespace kvr::netlistdb::yosys
