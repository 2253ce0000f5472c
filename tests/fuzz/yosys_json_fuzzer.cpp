// Whatever the text, the reader of Yosys JSON answers a netlist or throws a ReadError of one line, and after an error
// the global libset is empty as before.

#include <DataBase.h>
#include <LineFile.h>
#include <simdjson.h>
#include <yosys/NetlistReader.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    simdjson::padded_string text(std::string_view(reinterpret_cast<const char *>(data), size));
    // Windows of all lengths, so that short texts are read in several.
    const kvr::netlistdb::yosys::JsonInput input{text.data(), size, size + simdjson::SIMDJSON_PADDING, size % 64};
    try {
        const Verific::Netlist *top = kvr::netlistdb::yosys::readJsonText(input, "fuzz.json", {});
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
