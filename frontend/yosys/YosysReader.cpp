#include "YosysReader.h"

#include "NetlistReader.h"
#include "ReadFault.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <new>

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
    simdjson::padded_string text;
    errno = 0;
    const simdjson::error_code error = simdjson::padded_string::load(path).get(text);
    if (error == simdjson::MEMALLOC) {
        throw std::bad_alloc();
    }
    if (error != simdjson::SUCCESS) {
        fault.fail(std::string("cannot read the file: ") +
                   (errno != 0 ? std::strerror(errno) : simdjson::error_message(error)));
    }
    return readJsonText(text, path, options);
}

} // namespace kvr::netlistdb::yosys
