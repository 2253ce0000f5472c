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

// The object is complete when the other constructor ends: from then on an exception closes the file.
JsonFile::JsonFile(const std::string &path, const ReadFault &fault) : JsonFile(fault)
{
    // Opening a device may do something to it, and a pipe without a writer would never open.
    if (::stat(path.c_str(), &m_status) != 0) {
        fail(std::strerror(errno));
    }
    if (!S_ISREG(m_status.st_mode)) {
        fail(S_ISDIR(m_status.st_mode) ? "it is a directory" : "it is no regular file");
    }
    m_descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_descriptor < 0 || ::fstat(m_descriptor, &m_status) != 0) {
        fail(std::strerror(errno));
    }
    if (size() > simdjson::SIMDJSON_MAXSIZE_BYTES) {
        m_fault.fail("the file is larger than 4 GiB");
    }
}

JsonFile::~JsonFile()
{
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
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
    return ::fstat(m_descriptor, &now) == 0 && now.st_size == m_status.st_size &&
           isSameTime(now.st_mtim, m_status.st_mtim) && isSameTime(now.st_ctim, m_status.st_ctim);
}

void JsonFile::fail(const std::string &reason) const
{
    m_fault.fail("cannot read the file: " + reason);
}

} // namespace kvr::netlistdb::yosys
