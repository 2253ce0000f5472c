#include "design/InputFile.h"

#include "base/Failure.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <simdjson.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

namespace kvr::netlistdb::tool {

namespace {

/// No netlist of the kinds read here may be larger.
constexpr std::size_t LARGEST = simdjson::SIMDJSON_MAXSIZE_BYTES;
constexpr std::size_t PART = std::size_t{1} << 20;

bool endsWith(const std::string &text, const char *end)
{
    const std::size_t length = std::strlen(end);
    return text.size() >= length && text.compare(text.size() - length, length, end) == 0;
}

struct CloseGzip {
    void operator()(gzFile_s *file) const { gzclose_r(file); }
};
using GzipFile = std::unique_ptr<gzFile_s, CloseGzip>;

GzipFile openGzip(const std::string &file)
{
    // zlib closes what it is given, and standard input is not ours to close.
    const int descriptor =
        file == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3) : open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw refused(inputName(file), std::strerror(errno));
    }
    GzipFile stream(gzdopen(descriptor, "rb"));
    if (stream == nullptr) {
        close(descriptor);
        throw std::bad_alloc();
    }
    gzbuffer(stream.get(), PART);
    return stream;
}

[[noreturn]] void failGzip(const std::string &file, gzFile_s *stream)
{
    int code = Z_OK;
    const int error = errno;
    static_cast<void>(gzerror(stream, &code));
    if (code == Z_MEM_ERROR) {
        throw std::bad_alloc();
    }
    throw refused(inputName(file), code == Z_ERRNO       ? std::strerror(error)
                                   : code == Z_BUF_ERROR ? "the compressed data ends too early"
                                                         : "the compressed data is damaged");
}

bool isCompressed(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 2> magic{};
    return stream.read(magic.data(), magic.size()) && magic[0] == '\x1f' && magic[1] == '\x8b';
}

bool isRegular(const std::string &file)
{
    struct stat status {};
    return file != "-" && stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

bool beginsLikeJson(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(" \t\n\v\f\r");
    return first != std::string::npos && text[first] == '{';
}

char firstCharacter(const std::string &file)
{
    std::ifstream stream(file, std::ios::binary);
    char first = 0;
    stream >> first;
    return first;
}

} // namespace

std::string inputName(const std::string &file)
{
    return file == "-" ? "standard input" : file;
}

void checkReadable(const std::string &file)
{
    if (file == "-") {
        return;
    }
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) {
        throw refused(file, std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) {
        throw refused(file, std::strerror(EISDIR));
    }
    if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
        throw refused(file, "is neither a regular file nor a pipe");
    }
    if (S_ISREG(status.st_mode) && status.st_size == 0) {
        throw refused(file, "is empty");
    }
    if (access(file.c_str(), R_OK) != 0) {
        throw refused(file, std::strerror(errno));
    }
}

Input openInput(const std::string &file)
{
    Input input;
    input.name = inputName(file);
    if (isRegular(file) && !isCompressed(file)) {
        input.file = file;
        input.isJson = endsWith(file, ".json") || firstCharacter(file) == '{';
        return input;
    }
    input.text = readText(file);
    if (input.text.empty()) {
        throw refused(input.name, "is empty");
    }
    input.isJson = endsWith(file, ".json") || endsWith(file, ".json.gz") || beginsLikeJson(input.text);
    return input;
}

std::string readText(const std::string &file)
{
    const GzipFile stream = openGzip(file);
    std::string text;
    std::size_t size = 0;
    for (;;) {
        if (text.capacity() < size + PART + simdjson::SIMDJSON_PADDING) {
            text.reserve(2 * size + PART + simdjson::SIMDJSON_PADDING);
        }
        text.resize(size + PART);
        errno = 0;
        const int count = gzread(stream.get(), text.data() + size, PART);
        if (count < 0) {
            failGzip(file, stream.get());
        }
        size += static_cast<std::size_t>(count);
        if (size > LARGEST) {
            throw refused(inputName(file), "holds more than 4 GiB");
        }
        if (count == 0) {
            break;
        }
    }
    int code = Z_OK;
    static_cast<void>(gzerror(stream.get(), &code));
    if (code != Z_OK) {
        failGzip(file, stream.get());
    }
    text.resize(size);
    return text;
}

} // namespace kvr::netlistdb::tool
