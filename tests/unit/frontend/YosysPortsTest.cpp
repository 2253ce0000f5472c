// Ports of modules, their buses, bounds and attributes.

#include "ReaderTest.h"

namespace yosystest {
namespace {

class YosysPorts : public ReaderTest {};

TEST_F(YosysPorts, HaveTheDirectionsOfTheFile)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"i": {"direction": "input", "bits": [2]},
                                                     "o": {"direction": "output", "bits": [3]},
                                                     "io": {"direction": "inout", "bits": [4]}}})")),
              "work/top\n"
              "in i = i\n"
              "out o = o\n"
              "inout io = io\n"
              "net i\n"
              "net o\n"
              "net io\n");
}

TEST_F(YosysPorts, OfSeveralBitsBecomeOnePortPerBitAndABus)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"d": {"direction": "input", "bits": [2, 3]}}})")),
              "work/top\n"
              "in d[0] = d[0] in d\n"
              "in d[1] = d[1] in d\n"
              "in bus d [1:0]\n"
              "bus d [1:0]\n"
              "net d[0] in d\n"
              "net d[1] in d\n");
}

TEST_F(YosysPorts, CountFromTheirOffset)
{
    EXPECT_EQ(print(readModules(
                  R"("top": {"ports": {"d": {"direction": "input", "offset": 4, "bits": [2, 3]},
                                       "n": {"direction": "input", "bits": [4, 5], "offset": -1}}})")),
              "work/top\n"
              "in d[4] = d[4] in d\n"
              "in d[5] = d[5] in d\n"
              "in n[-1] = n[-1] in n\n"
              "in n[0] = n[0] in n\n"
              "in bus d [5:4]\n"
              "in bus n [0:-1]\n"
              "bus d [5:4]\n"
              "bus n [0:-1]\n"
              "net d[4] in d\n"
              "net d[5] in d\n"
              "net n[-1] in n\n"
              "net n[0] in n\n");
}

TEST_F(YosysPorts, DeclaredUpwardsHaveTheLeastSignificantBitOnTheRight)
{
    EXPECT_EQ(print(readModules(
                  R"("top": {"ports": {"u": {"direction": "output", "offset": 2, "upto": 1, "bits": [7, 8, 9]}}})")),
              "work/top\n"
              "out u[4] = u[4] in u\n"
              "out u[3] = u[3] in u\n"
              "out u[2] = u[2] in u\n"
              "out bus u [2:4]\n"
              "bus u [2:4]\n"
              "net u[4] in u\n"
              "net u[3] in u\n"
              "net u[2] in u\n");
}

TEST_F(YosysPorts, OfOneBitWithAnOffsetAreVectorsOfOne)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"d": {"direction": "input", "offset": 3, "bits": [2]}}})")),
              "work/top\n"
              "in d[3] = d[3] in d\n"
              "in bus d [3:3]\n"
              "bus d [3:3]\n"
              "net d[3] in d\n");
}

TEST_F(YosysPorts, MayCountUpToTheLargestIndexAndFromTheSmallest)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {
        "d": {"direction": "input", "offset": 2147483646, "bits": [2, 3]},
        "u": {"direction": "input", "offset": -2147483648, "upto": 1, "bits": [4, 5]}}})")),
              "work/top\n"
              "in d[2147483646] = d[2147483646] in d\n"
              "in d[2147483647] = d[2147483647] in d\n"
              "in u[-2147483647] = u[-2147483647] in u\n"
              "in u[-2147483648] = u[-2147483648] in u\n"
              "in bus d [2147483647:2147483646]\n"
              "in bus u [-2147483648:-2147483647]\n"
              "bus d [2147483647:2147483646]\n"
              "bus u [-2147483648:-2147483647]\n"
              "net d[2147483646] in d\n"
              "net d[2147483647] in d\n"
              "net u[-2147483647] in u\n"
              "net u[-2147483648] in u\n");
}

TEST_F(YosysPorts, OfNoBitsLeaveNothingBehind)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"none": {"direction": "input", "bits": []}},
                                           "netnames": {"none": {"bits": []}}})")),
              "work/top\n");
}

TEST_F(YosysPorts, BearTheAttributesAndPositionOfTheNetOfTheirName)
{
    EXPECT_EQ(print(readModules(R"("top": {
        "ports": {"C": {"direction": "input", "bits": [2]}, "D": {"direction": "input", "bits": [3, 4]}},
        "netnames": {
            "C": {"bits": [2], "attributes": {"KVR_ATTRIBUTE_PORT__IS_CLOCK": "TRUE", "src": "cells.v:7.3-7.4"}},
            "D": {"bits": [3, 4], "attributes": {"pad": "p", "protected": 1}}}})")),
              "work/top\n"
              "in C = C at cells.v:7 {KVR_ATTRIBUTE_PORT__IS_CLOCK=TRUE}\n"
              "in D[0] = D[0] in D protected {pad=p}\n"
              "in D[1] = D[1] in D protected {pad=p}\n"
              "in bus D [1:0] protected {pad=p}\n"
              "bus D [1:0] protected {pad=p}\n"
              "net C at cells.v:7 {KVR_ATTRIBUTE_PORT__IS_CLOCK=TRUE}\n"
              "net D[0] in D protected\n"
              "net D[1] in D protected\n");
}

TEST_F(YosysPorts, OnTheSameBitShareTheNetOfTheFirst)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"z": {"direction": "input", "bits": [2]},
                                                     "a": {"direction": "output", "bits": [2]}}})")),
              "work/top\n"
              "in z = z\n"
              "out a = z\n"
              "net z\n"
              "also d a     =z\n");
}

TEST_F(YosysPorts, OnConstantsMeetTheNetsOfTheConstants)
{
    EXPECT_EQ(print(readModules(R"("top": {"ports": {"y": {"direction": "output", "bits": ["1", 2, "0"]}}})")),
              "work/top\n"
              "out y[0] = $const$1 in y\n"
              "out y[1] = y[1] in y\n"
              "out y[2] = $const$0 in y\n"
              "out bus y [2:0]\n"
              "net y[1]\n"
              "net $const$1\n"
              "net $const$0\n"
              "$const$0: Constants/$gnd (Y=$const$0)\n"
              "$const$1: Constants/$pwr (Y=$const$1)\n"
              "also d y 2 0   1*1 1:1=y 1*0\n");
}

TEST_F(YosysPorts, WithEscapedNamesAreFoundInAnyOrder)
{
    // Looking through all ports for each would take hours.
    constexpr int PORTS = 50000;
    std::string ports;
    std::string forwards;
    std::string backwards;
    for (int at = PORTS; at-- > 0;) {
        backwards += R"("\\p)" + std::to_string(at) + R"( [x]": [)" + std::to_string(at + 2) + (at > 0 ? "], " : "]");
    }
    for (int at = 0; at < PORTS; ++at) {
        const std::string name = R"("\\p)" + std::to_string(at) + R"( [x]": )";
        const std::string bits = '[' + std::to_string(at + 2) + ']';
        const std::string separator = at == 0 ? "" : ", ";
        ports += separator + name + R"({"direction": "input", "bits": )" + bits + '}';
        forwards += separator + name + bits;
    }
    const Verific::Netlist *const top =
        readModules(R"("sub": {"ports": {)" + ports + R"(}}, "top": {"ports": {)" + ports +
                    R"(}, "cells": {"u": {"type": "sub", "connections": {)" + forwards +
                    R"(}}, "v": {"type": "sub", "connections": {)" + backwards + "}}}}");
    for (const char *name : {"u", "v"}) {
        const Verific::Instance *const instance = top->GetInst(name);
        for (const int at : {0, 33333, PORTS - 1}) {
            const std::string port = "\\p" + std::to_string(at) + " [x]";
            const Verific::Net *const net = instance->GetNet(instance->View()->GetPort(port.c_str()));
            ASSERT_NE(net, nullptr) << name << ' ' << port;
            EXPECT_EQ(net->Name(), port);
        }
    }
}

} // namespace
} // namespace yosystest
