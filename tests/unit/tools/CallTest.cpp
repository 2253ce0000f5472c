#include "serve/Call.h"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace kvr::netlistdb::tool {
namespace {

class CallTest : public testing::Test {
  protected:
    CallTest() { EXPECT_EQ(pipe(m_ends), 0); }
    ~CallTest() override { close(m_ends[0]); }

    /// The messages that were written; nothing is written after that.
    std::string written()
    {
        close(m_ends[1]);
        std::string text;
        std::array<char, 4096> block{};
        for (ssize_t got = 1; got > 0;) {
            got = read(m_ends[0], block.data(), block.size());
            text.append(block.data(), static_cast<std::size_t>(got));
        }
        return text;
    }

    int m_ends[2] = {-1, -1};
};

TEST_F(CallTest, ClientThatWantsProgressIsToldWhatBegins)
{
    MessageWriter writer(m_ends[1]);
    Call call(1, "token", writer);
    call.begin("finding crossings");
    call.begin("counting");
    EXPECT_EQ(written(), "{\"jsonrpc\":\"2.0\",\"method\":\"notifications/progress\",\"params\":{\"progressToken\":"
                         "\"token\",\"progress\":1,\"message\":\"finding crossings\"}}\n"
                         "{\"jsonrpc\":\"2.0\",\"method\":\"notifications/progress\",\"params\":{\"progressToken\":"
                         "\"token\",\"progress\":2,\"message\":\"counting\"}}\n");
}

TEST_F(CallTest, ClientWithoutTokenIsToldNothing)
{
    MessageWriter writer(m_ends[1]);
    Call call(1, nullptr, writer);
    call.begin("counting");
    EXPECT_EQ(written(), "");
}

TEST_F(CallTest, CancelledCallEndsWhereItIsLookedAt)
{
    MessageWriter writer(m_ends[1]);
    Call call(1, "token", writer);
    call.step(0);
    call.cancel();
    EXPECT_TRUE(call.isCancelled());
    EXPECT_THROW(call.check(), CallCancelled);
    EXPECT_THROW(call.step(1), CallCancelled);
    EXPECT_THROW(call.begin("counting"), CallCancelled);
    EXPECT_EQ(written(), "");
}

} // namespace
} // namespace kvr::netlistdb::tool
