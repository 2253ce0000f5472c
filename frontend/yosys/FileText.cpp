#include "FileText.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <simdjson.h>
#include <string_view>
#include <unistd.h>

namespace kvr::netlistdb::yosys {

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{256} * 1024;

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// An open file.
class Descriptor {
  public:
    explicit Descriptor(const std::string &path) : m_number(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Descriptor()
    {
        if (m_number >= 0) {
            close(m_number);
        }
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool isOpen() const { return m_number >= 0; }
    /// As ::read(), which a signal does not end.
    ssize_t read(char *to, std::size_t size) const
    {
        for (;;) {
            const ssize_t count = ::read(m_number, to, size);
            if (count >= 0 || errno != EINTR) {
                return count;
            }
        }
    }

  private:
    int m_number;
};

} // namespace

FileText::FileText(const std::string &path, std::uint64_t size, const ReadFault &fault)
    : m_path(path), m_capacity(static_cast<std::size_t>(size) + simdjson::SIMDJSON_PADDING),
      m_data(new char[m_capacity])
{
    const Descriptor file(path);
    const std::unique_ptr<char[]> block(new char[BLOCK_SIZE]);
    for (std::uint64_t left = size; left > 0;) {
        const ssize_t count =
            file.isOpen() ? file.read(block.get(), std::min<std::uint64_t>(left, BLOCK_SIZE)) : ssize_t{-1};
        if (count < 0) {
            fault.fail(std::string("cannot read the file: ") + std::strerror(errno));
        }
        if (count == 0) {
            fault.fail("cannot read the file: it became shorter meanwhile");
        }
        addBlock(block.get(), block.get() + count);
        left -= static_cast<std::uint64_t>(count);
    }
    std::memset(m_data.get() + m_size, 0, simdjson::SIMDJSON_PADDING);
}

void FileText::addBlock(const char *begin, const char *end)
{
    for (const char *at = begin; at != end;) {
        if (m_isLineStart) {
            at = std::find_if_not(at, end, isBlank);
            m_isLineStart = at == end;
        }
        const void *const found = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
        const char *const lineEnd = found != nullptr ? static_cast<const char *>(found) + 1 : end;
        std::memcpy(m_data.get() + m_size, at, static_cast<std::size_t>(lineEnd - at));
        m_size += static_cast<std::size_t>(lineEnd - at);
        m_isLineStart = m_isLineStart || found != nullptr;
        at = lineEnd;
    }
}

std::size_t FileText::blanksOf(std::size_t number) const
{
    std::ifstream file(m_path, std::ios::binary);
    std::string line;
    for (std::size_t at = 0; at < number; ++at) {
        if (!std::getline(file, line)) {
            return 0;
        }
    }
    const auto blanks = std::find_if_not(line.begin(), line.end(), isBlank) - line.begin();
    return number > 1 ? static_cast<std::size_t>(blanks) : 0;
}

} // namespace kvr::netlistdb::yosys
