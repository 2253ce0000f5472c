#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

namespace {

struct Output {
    std::string answers;
    std::string addressOrder;
};

/// Runs the program that prints clocks in a process of its own, where its items lie at other addresses.
Output runProgram(const std::string &argument)
{
    Output output;
    const std::string command = "'" CLOCK_ANSWERS "' " + argument;
    FILE *const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        ADD_FAILURE() << "cannot run " << command;
        return output;
    }
    std::array<char, 65536> buffer;
    for (std::size_t got = 0; (got = fread(buffer.data(), 1, buffer.size(), pipe)) != 0;) {
        output.answers.append(buffer.data(), got);
    }
    EXPECT_EQ(pclose(pipe), 0) << command;
    const std::size_t lastLine = output.answers.find_last_of('\n', output.answers.size() - 2) + 1;
    output.addressOrder = output.answers.substr(lastLine);
    output.answers.resize(lastLine);
    return output;
}

TEST(ClockAnswers, AreTheSameInEveryProcessWhereverTheItemsLie)
{
    const Output first = runProgram("1");
    ASSERT_NE(first.answers.find(" -> none\n"), std::string::npos);
    ASSERT_NE(first.answers.find(" -> n"), std::string::npos);
    for (const char *argument : {"1", "2", "3"}) {
        const Output other = runProgram(argument);
        EXPECT_EQ(other.answers, first.answers);
        if (std::string(argument) != "1") {
            EXPECT_NE(other.addressOrder, first.addressOrder) << "the items did not move";
        }
    }
}

} // namespace
