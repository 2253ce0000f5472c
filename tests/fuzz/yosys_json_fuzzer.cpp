// Whatever the text, the reader of Yosys JSON answers a netlist or throws a ReadError of one line, and after an error
// the global libset is empty as before.

#include <DataBase.h>
#include <LineFile.h>
#include <yosys/NetlistReader.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const simdjson::padded_string text(std::string_view(reinterpret_cast<const char *>(data), size));
    try {
        const Verific::Netlist *top = kvr::netlistdb::yosys::readJsonText(text, "fuzz.json", {});
        if (top == nullptr || top->Owner() == nullptr) {
            std::abort();
        }
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        if (std::strchr(error.what(), '\n') != nullptr || Verific::Libset::Global()->GetLibraries()->Size() != 0) {
            std::abort();
        }
    }
    Verific::Libset::Reset();
    Verific::LineFile::DeleteAllLineFiles();
    return 0;
}
