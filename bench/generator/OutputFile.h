#pragma once

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <iterator>
#include <string>
#include <system_error>

namespace kvr::netlistdb::bench {

/// A file that is written in large pieces.
class OutputFile {
  public:
    explicit OutputFile(const std::string &path) : m_path(path), m_file(std::fopen(path.c_str(), "wb"))
    {
        if (m_file == nullptr) {
            fail();
        }
    }
    ~OutputFile()
    {
        if (m_file != nullptr) {
            std::fclose(m_file);
        }
    }
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    template <typename... Arguments> void print(fmt::format_string<Arguments...> format, Arguments &&...arguments)
    {
        fmt::format_to(std::back_inserter(m_buffer), format, std::forward<Arguments>(arguments)...);
        if (m_buffer.size() > PIECE) {
            flush();
        }
    }

    /// Must be called: reports what the destructor cannot.
    void close()
    {
        flush();
        std::FILE *const file = m_file;
        m_file = nullptr;
        if (std::fclose(file) != 0) {
            fail();
        }
    }

  private:
    static constexpr std::size_t PIECE = 1 << 20;

    void flush()
    {
        if (std::fwrite(m_buffer.data(), 1, m_buffer.size(), m_file) != m_buffer.size()) {
            fail();
        }
        m_buffer.clear();
    }

    [[noreturn]] void fail() const { throw std::system_error(errno, std::generic_category(), m_path); }

    std::string m_path;
    std::FILE *m_file;
    fmt::memory_buffer m_buffer;
};

} // namespace kvr::netlistdb::bench
