// Runs a fuzz target once on every file below the paths that it is given. Any compiler will do.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void replay(const std::filesystem::path &file)
{
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    // Named beforehand: a target that finds something ends the program.
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    // A block of the size itself, so that the address sanitizer sees what is read beyond it.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

} // namespace

int main(int argc, char **argv)
{
    int count = 0;
    try {
        for (int at = 1; at < argc; ++at) {
            for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[at])) {
                if (entry.is_regular_file()) {
                    replay(entry.path());
                    ++count;
                }
            }
        }
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    if (count == 0) {
        std::fputs("no input\n", stderr);
        return 1;
    }
    return 0;
}
