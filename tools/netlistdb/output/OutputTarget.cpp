#include "output/OutputTarget.h"

#include "base/Failure.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string_view>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

/// As many as the kernel follows.
constexpr int MOST_LINKS = 40;

/// The descriptor that @p path, such as /dev/fd/3, is a name for. Opened anew it would be a stream of its own, which
/// overwrites what others append.
std::optional<int> descriptorNamed(std::string_view path)
{
    for (const std::string_view prefix : {"/dev/fd/", "/proc/self/fd/"}) {
        if (path.substr(0, prefix.size()) == prefix) {
            int descriptor = 0;
            const char *end = path.data() + path.size();
            const auto [stop, error] = std::from_chars(path.data() + prefix.size(), end, descriptor);
            if (error == std::errc() && stop == end) {
                return descriptor;
            }
        }
    }
    return std::nullopt;
}

/// What the symbolic link @p path leads to, or @p path itself.
std::string followLink(const std::string &path)
{
    std::error_code error;
    const std::filesystem::path next = std::filesystem::read_symlink(path, error);
    return error ? path : (std::filesystem::path(path).parent_path() / next).string();
}

bool isSame(const struct stat &a, const struct stat &b)
{
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Fails unless the file may be written. Opening it asks more than its mode: a program that runs refuses.
void checkWritable(const std::string &name, const std::string &path)
{
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw refused(name, std::strerror(errno));
    }
    close(descriptor);
}

} // namespace

std::string OutputTarget::directory() const
{
    const std::string parent = std::filesystem::path(path).parent_path().string();
    return parent.empty() ? "." : parent;
}

OutputTarget findTarget(const std::string &name, const std::vector<std::string> &inputs)
{
    OutputTarget target;
    if (name.empty() || name == "-") {
        return target;
    }
    target.path = name;
    for (int links = 0; links < MOST_LINKS; ++links) {
        if (const std::optional<int> descriptor = descriptorNamed(target.path)) {
            target.descriptor = *descriptor;
            target.path.clear();
            if (fcntl(*descriptor, F_GETFD) < 0) {
                throw refused(name, std::strerror(errno));
            }
            return target;
        }
        std::string next = followLink(target.path);
        if (next == target.path) {
            break;
        }
        target.path = std::move(next);
    }
    const bool exists = stat(target.path.c_str(), &target.status) == 0;
    if (!exists && errno != ENOENT) {
        throw refused(name, std::strerror(errno));
    }
    target.exists = exists && S_ISREG(target.status.st_mode);
    target.kind = exists && !target.exists ? OutputTarget::Kind::Place : OutputTarget::Kind::File;
    if (!target.exists) {
        return target;
    }
    const bool isInput = std::any_of(inputs.begin(), inputs.end(), [&target](const std::string &input) {
        struct stat status {};
        const int failed = input == "-" ? fstat(STDIN_FILENO, &status) : stat(input.c_str(), &status);
        return failed == 0 && isSame(status, target.status);
    });
    if (isInput) {
        throw refused(name, "is read by this run and cannot be its output");
    }
    checkWritable(name, target.path);
    return target;
}

} // namespace kvr::netlistdb::tool
