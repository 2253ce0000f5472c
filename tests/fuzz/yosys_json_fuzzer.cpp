// Whatever the text, the reader of Yosys JSON returns a netlist or throws a ReadError of one line, and after an error
// the global libset is empty as before. Windows of other lengths come to the same netlist, or to an error, and a file
// with the text to the same netlist or error, however much of it is left in the file.

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

struct Outcome {
    bool isRead = false;
    std::string text; ///< the netlist, or the error
};

template <typename Read> Outcome outcome(Read &&read)
{
    Outcome result;
    try {
        const Verific::Netlist *top = read();
        if (top == nullptr || top->Owner() == nullptr) {
            std::abort();
        }
        result = {true, testsupport::dumpHierarchy(top)};
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        if (std::strchr(error.what(), '\n') != nullptr || Verific::Libset::Global()->GetLibraries()->Size() != 0) {
            std::abort();
        }
        result = {false, error.what()};
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
    kvr::netlistdb::yosys::JsonInput input{text.data(), size, size + simdjson::SIMDJSON_PADDING};
    const auto ofText = [&] {
        return outcome([&] { return kvr::netlistdb::yosys::readJsonText(input, file.path(), {}); });
    };
    const Outcome whole = ofText();
    // Windows of all lengths, so that short texts are read in several. Which of several faults is met first may differ.
    input.window = size % 64;
    const Outcome windows = ofText();
    if (windows.isRead != whole.isRead || (whole.isRead && windows.text != whole.text)) {
        std::abort();
    }
    const Outcome ofFile = outcome([&] {
        return kvr::netlistdb::yosys::readJsonFile(file.path(), {size % 5 * 30, input.window}, {});
    });
    if (ofFile.text != whole.text) {
        std::abort();
    }
    return 0;
}
