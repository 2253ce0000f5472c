// Any bytes from a client: every line is handed out once, and what it holds is a message with arguments, or a fault
// that is one line of JSON.

#include <base/Failure.h>
#include <serve/Arguments.h>
#include <serve/LineReader.h>
#include <serve/Pages.h>
#include <serve/Rpc.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

using namespace kvr::netlistdb::tool;

namespace {

constexpr std::size_t LONGEST = 512;

/// A file in memory that holds @p bytes, to be read from its beginning.
int fileOf(const std::string &bytes)
{
    const int descriptor = memfd_create("lines", 0);
    if (descriptor < 0 || write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()) ||
        lseek(descriptor, 0, SEEK_SET) != 0) {
        std::abort();
    }
    return descriptor;
}

void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

const std::vector<Parameter> &parameters()
{
    static const std::vector<Parameter> ALL = [] {
        std::vector<Parameter> all = pageParameters();
        all.emplace_back("pattern", Parameter::Type::Text, "");
        all.emplace_back("kinds", Parameter::Type::Texts, "", std::vector<std::string>{"net", "bus"});
        all.emplace_back("all", Parameter::Type::Flag, "");
        return all;
    }();
    return ALL;
}

/// What the layers above the lines make of @p line: an error or an answer in one line.
std::string answerTo(const std::string &line)
{
    try {
        const RpcMessage message = parseMessage(line);
        require(message.params.is_object());
        require(message.kind != RpcMessage::Kind::Request || isRequestId(message.id));
        try {
            const Arguments arguments(message.params, parameters());
            return resultLine(message.id, Json(arguments.canonical({"cursor"})));
        } catch (const Failure &fault) {
            return resultLine(message.id, Json(fault.what()));
        }
    } catch (const RpcFailure &failure) {
        return errorLine(failure);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const int descriptor = fileOf(bytes);
    LineReader reader(descriptor, -1, LONGEST);
    std::string line;
    std::size_t lines = 0;
    for (LineReader::Kind kind = reader.next(line); kind != LineReader::Kind::End; kind = reader.next(line)) {
        ++lines;
        if (kind == LineReader::Kind::TooLong) {
            continue;
        }
        require(kind == LineReader::Kind::Line && line.size() <= LONGEST && line.find('\n') == std::string::npos);
        const std::string answer = answerTo(line);
        require(answer.find('\n') == std::string::npos && Json::accept(answer));
    }
    std::size_t ends = 0;
    for (const char c : bytes) {
        ends += c == '\n' ? 1 : 0;
    }
    require(lines == ends + (bytes.empty() || bytes.back() == '\n' ? 0 : 1));
    close(descriptor);
    return 0;
}
