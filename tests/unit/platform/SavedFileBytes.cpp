#include "SavedFileBytes.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace platformtest {

ScratchDirectory::ScratchDirectory()
{
    std::string name = (std::filesystem::temp_directory_path() / "netlist_XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    m_path = name;
}

ScratchDirectory::~ScratchDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string readBytes(const std::string &file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeBytes(const std::string &file, const std::string &bytes)
{
    // Some file systems wait for the disk when a file is overwritten, none when it is made.
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string resealed(std::string bytes)
{
    const std::uint64_t length = bytes.size() - HEADER_SIZE;
    std::memcpy(&bytes[LENGTH_AT], &length, sizeof length);
    const std::string covered = bytes.substr(0, CHECKSUM_AT) + bytes.substr(HEADER_SIZE);
    const std::uint64_t checksum = XXH3_64bits(covered.data(), covered.size());
    std::memcpy(&bytes[CHECKSUM_AT], &checksum, sizeof checksum);
    return bytes;
}

} // namespace platformtest
