// Memories that stayed memories.

#include "ReaderTest.h"

namespace yosystest {
namespace {

class YosysMemories : public ReaderTest {};

TEST_F(YosysMemories, BecomeNetsOfAllTheirBits)
{
    const Verific::Netlist *top = readModules(R"("top": {"memories": {
        "mem": {"hide_name": 0, "attributes": {"src": "m.v:3.1-3.9", "ram_style": "block"}, "width": 8,
                "start_offset": 4, "size": 16},
        "$generated": {"attributes": {"src": "m.v:4.1"}, "width": 1, "size": 1},
        "u_fifo.store": {"width": 0, "size": 7}}})");
    EXPECT_EQ(print(top), "work/top\n"
                          "ram mem 128 at m.v:3 {ram_style=block}\n"
                          "ram $generated 1\n"
                          "ram u_fifo.store 0\n");
}

TEST_F(YosysMemories, MayHoldAsManyBitsAsANetCanCount)
{
    const Verific::Netlist *top = readModules(R"("top": {"memories": {"m": {"width": 65535, "size": 65537}}})");
    EXPECT_EQ(print(top), "work/top\nram m 4294967295\n");
}

TEST_F(YosysMemories, LargerThanThatAreRefused)
{
    EXPECT_EQ(errorOfModules(R"("top": {"memories": {"m": {"width": 65536, "size": 65536}}})"),
              "design.json: a memory of 65536 words of 65536 bits is too large: at most 4294967295 bits (module 'top', "
              "memory 'm')");
}

} // namespace
} // namespace yosystest
