#pragma once

#include <filesystem>
#include <string>

namespace platformtest {

/// A directory of its own for a test, removed with all that is in it.
class ScratchDirectory {
  public:
    ScratchDirectory();
    ~ScratchDirectory();
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    std::string file(const std::string &name) const { return (m_path / name).string(); }
    const std::filesystem::path &path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

std::string readBytes(const std::string &file);
void writeBytes(const std::string &file, const std::string &bytes);

// A saved netlist: 8 bytes of magic, version (32 bits), zero (32 bits), length of the rest (64 bits), checksum (64
// bits), then the rest.
constexpr std::size_t VERSION_AT = 8;
constexpr std::size_t ZERO_AT = 12;
constexpr std::size_t LENGTH_AT = 16;
constexpr std::size_t CHECKSUM_AT = 24;
constexpr std::size_t HEADER_SIZE = 32;

/// The bytes of a saved netlist with length and checksum made right, so that only the content can be found wrong.
std::string resealed(std::string bytes);

} // namespace platformtest
