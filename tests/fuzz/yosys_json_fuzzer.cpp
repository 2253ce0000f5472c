// Whatever the text, the reader of Yosys JSON returns a netlist or throws a ReadError of one line, and after an error
// the global libset is empty as before. A file with the text comes to the same, however much of it is left in the file.

#include "tests/support/NetlistDump.h"

#include <DataBase.h>
#include <LineFile.h>
#include <simdjson.h>
#include <yosys/NetlistReader.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace {

/// What comes of @p read(): the netlist, or the error.
template <typename Read> std::string outcome(Read &&read)
{
    std::string result;
    try {
        const Verific::Netlist *top = read();
        if (top == nullptr || top->Owner() == nullptr) {
            std::abort();
        }
        result = testsupport::dumpHierarchy(top);
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        if (std::strchr(error.what(), '\n') != nullptr || Verific::Libset::Global()->GetLibraries()->Size() != 0) {
            std::abort();
        }
        result = error.what();
    }
    Verific::Libset::Reset();
    Verific::LineFile::DeleteAllLineFiles();
    return result;
}

/// A file in memory.
class MemoryFile {
  public:
    MemoryFile(const std::uint8_t *data, std::size_t size) : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || write(m_descriptor, data, size) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { close(m_descriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

  private:
    int m_descriptor;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const MemoryFile file(data, size);
    simdjson::padded_string text(std::string_view(reinterpret_cast<const char *>(data), size));
    // Windows of all lengths, so that short texts are read in several.
    const std::size_t window = size % 64;
    const kvr::netlistdb::yosys::JsonInput input{text.data(), size, size + simdjson::SIMDJSON_PADDING, window};
    const std::string ofText = outcome([&] { return kvr::netlistdb::yosys::readJsonText(input, file.path(), {}); });
    const std::string ofFile = outcome([&] {
        return kvr::netlistdb::yosys::readJsonFile(file.path(), {size % 5 * 30, window}, {});
    });
    if (ofText != ofFile) {
        std::abort();
    }
    return 0;
}
