#pragma once

#include <filesystem>
#include <string>
#include <system_error>

#include <unistd.h>

namespace testsupport {

/// The path of a file of this process's own, which is removed in the end if somebody wrote it.
class ScratchFile {
  public:
    explicit ScratchFile(const std::string &name)
        : m_path((std::filesystem::temp_directory_path() / (name + '_' + std::to_string(::getpid()))).string())
    {
    }
    ~ScratchFile()
    {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;
    const std::string &path() const { return m_path; }

  private:
    std::string m_path;
};

} // namespace testsupport
