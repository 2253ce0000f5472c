#include "YosysReader.h"

#include "FileText.h"
#include "NetlistReader.h"
#include "ReadFault.h"

#include <filesystem>
#include <simdjson.h>

namespace kvr::netlistdb::yosys {

Verific::Netlist *readJson(const std::string &path, const ReadOptions &options)
{
    const ReadFault fault(path);
    std::error_code failed;
    const std::filesystem::file_status status = std::filesystem::status(path, failed);
    if (failed) {
        fault.fail("cannot read the file: " + failed.message());
    }
    if (!std::filesystem::is_regular_file(status)) {
        fault.fail(std::filesystem::is_directory(status) ? "cannot read the file: it is a directory"
                                                         : "cannot read the file: it is no regular file");
    }
    const std::uintmax_t size = std::filesystem::file_size(path, failed);
    if (failed) {
        fault.fail("cannot read the file: " + failed.message());
    }
    if (size > simdjson::SIMDJSON_MAXSIZE_BYTES) {
        fault.fail("the file is larger than 4 GiB");
    }
    const FileText text(path, size, fault);
    const TextFile file{size, [&text](std::size_t line) { return text.blanksOf(line); }};
    return readJsonText(text.input(), file, path, options);
}

} // namespace kvr::netlistdb::yosys
