// Writes the seeds of the fuzz target for saved netlists into a directory.

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/unit/platform/Designs.h"

#include <DataBase.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

constexpr const char *ELABORATED = R"(
    register DFF(in c, d, out q) clock=c end
    operator ADD(in a, b, out o) end
    primitive BUF(in i, out o) type=5 input=i end
    module stage(in c, d, out q) at /rtl/stage.v:1
        b: BUF(i=c, o=cb)
        r: DFF(c=cb, d=d, q=q) at /rtl/stage.v:2
    end
    module top(in c, in [1:0] d, out q) at /rtl/top.v:1
        bus [1:0] pair
        u1: stage(c=c, d=d[1], q=x[0]) #WIDTH=4
        u2: stage(c=c, d=d[0], q=x[1])
        a: ADD(a=x[0], b=x[1], o=q)
    end)";

constexpr const char *POST_MAP = R"(
    module top(in c, d, out q)
        b: KVR_GBUFCE(I=c, O=g)
        f: KVR_FF(C=g, D=d, Q=x)
        l: KVR_LUT2(I0=x, I1=d, O=q)
    end)";

bool save(const Verific::Netlist *top, const std::filesystem::path &file)
{
    const bool isSaved = top->SaveToFile(file.c_str()) != 0;
    testsupport::LibsetGuard::clear();
    return isSaved;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: saved_netlist_seeds DIRECTORY\n", stderr);
        return 2;
    }
    const std::filesystem::path directory = std::filesystem::absolute(argv[1]);
    // Saved netlists hold absolute names of source files; these must be the same wherever the seeds are written.
    std::filesystem::current_path("/");
    const bool isSaved = save(platformtest::makeEverything(), directory / "everything") &&
                         save(testsupport::netlistFromText(ELABORATED), directory / "elaborated") &&
                         save(testsupport::netlistFromText(POST_MAP), directory / "post_map") &&
                         save(testsupport::netlistFromText("module top() end"), directory / "empty");
    if (!isSaved) {
        std::fprintf(stderr, "saved_netlist_seeds: cannot write to %s\n", directory.c_str());
        return 1;
    }
    return 0;
}
