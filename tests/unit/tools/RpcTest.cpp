#include "serve/Rpc.h"

#include <gtest/gtest.h>
#include <string>

namespace kvr::netlistdb::tool {
namespace {

/// What parsing @p line ends with.
RpcFailure faultOf(const std::string &line)
{
    try {
        parseMessage(line);
    } catch (const RpcFailure &failure) {
        return failure;
    }
    ADD_FAILURE() << "understood: " << line;
    return {RPC_INTERNAL_ERROR, ""};
}

std::string nested(std::size_t depth)
{
    return R"({"jsonrpc":"2.0","id":1,"method":"m","params":{"a":)" + std::string(depth, '[') +
           std::string(depth, ']') + "}}";
}

TEST(Rpc, RequestHasIdMethodAndParameters)
{
    const RpcMessage message = parseMessage(R"({"jsonrpc":"2.0","id":"a","method":"tools/call","params":{"x":[1]}})");
    EXPECT_EQ(message.kind, RpcMessage::Kind::Request);
    EXPECT_EQ(message.id, Json("a"));
    EXPECT_EQ(message.method, "tools/call");
    EXPECT_EQ(message.params.at("x"), Json::array({1}));
}

TEST(Rpc, MessageWithoutIdIsANotificationWithEmptyParameters)
{
    const RpcMessage message = parseMessage(R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
    EXPECT_EQ(message.kind, RpcMessage::Kind::Notification);
    EXPECT_TRUE(message.id.is_null());
    EXPECT_EQ(message.params, Json::object());
}

TEST(Rpc, ResultsAndErrorsOfTheOtherSideAreResponses)
{
    EXPECT_EQ(parseMessage(R"({"jsonrpc":"2.0","id":1,"result":{}})").kind, RpcMessage::Kind::Response);
    EXPECT_EQ(parseMessage(R"({"jsonrpc":"2.0","id":1,"error":{}})").kind, RpcMessage::Kind::Response);
}

TEST(Rpc, WhatIsNoJsonIsAParseErrorWithoutId)
{
    for (const char *line : {"{", "nonsense", "{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"\xFF\"}"}) {
        const RpcFailure fault = faultOf(line);
        EXPECT_EQ(fault.code(), RPC_PARSE_ERROR) << line;
        EXPECT_TRUE(fault.id().is_null()) << line;
    }
}

TEST(Rpc, LongFaultsAreQuotedInShort)
{
    EXPECT_LT(std::string(faultOf("\"" + std::string(100'000, 'x')).what()).size(), 300U);
}

TEST(Rpc, WhatIsNoRequestIsRefusedWithTheIdThatItHas)
{
    EXPECT_EQ(faultOf("[]").code(), RPC_INVALID_REQUEST);
    EXPECT_EQ(faultOf("7").code(), RPC_INVALID_REQUEST);
    for (const char *rest : {R"("method":"m")", R"("jsonrpc":"1.0","method":"m")", R"("jsonrpc":"2.0")",
                             R"("jsonrpc":"2.0","method":5)"}) {
        const RpcFailure fault = faultOf(std::string(R"({"id":3,)") + rest + "}");
        EXPECT_EQ(fault.code(), RPC_INVALID_REQUEST) << rest;
        EXPECT_EQ(fault.id(), Json(3)) << rest;
    }
}

TEST(Rpc, IdIsATextOrAnInteger)
{
    for (const char *id : {"null", "1.5", "true", "{}", "[1]"}) {
        const RpcFailure fault = faultOf(std::string(R"({"jsonrpc":"2.0","method":"m","id":)") + id + "}");
        EXPECT_EQ(fault.code(), RPC_INVALID_REQUEST) << id;
        EXPECT_TRUE(fault.id().is_null()) << id;
    }
    EXPECT_EQ(parseMessage(R"({"jsonrpc":"2.0","method":"m","id":-7})").id, Json(-7));
}

TEST(Rpc, ParametersAreAnObject)
{
    const RpcFailure fault = faultOf(R"({"jsonrpc":"2.0","id":1,"method":"m","params":[1]})");
    EXPECT_EQ(fault.code(), RPC_INVALID_PARAMS);
    EXPECT_EQ(fault.id(), Json(1));
}

TEST(Rpc, DeepNestingIsRefusedBeforeAnythingWalksIt)
{
    EXPECT_EQ(parseMessage(nested(40)).method, "m");
    EXPECT_EQ(faultOf(nested(100)).code(), RPC_INVALID_REQUEST);
    EXPECT_EQ(faultOf(nested(100'000)).code(), RPC_INVALID_REQUEST);
}

TEST(Rpc, AnswersAreOneLineEach)
{
    EXPECT_EQ(resultLine("a", {{"x", "1\n2"}}), R"({"jsonrpc":"2.0","id":"a","result":{"x":"1\n2"}})");
    EXPECT_EQ(errorLine({RPC_METHOD_NOT_FOUND, "no\nsuch", 4}),
              R"({"jsonrpc":"2.0","id":4,"error":{"code":-32601,"message":"no\nsuch"}})");
    EXPECT_EQ(errorLine({RPC_UNSUPPORTED_VERSION, "old", nullptr, {{"requested", "1"}}}),
              R"({"jsonrpc":"2.0","id":null,"error":{"code":-32022,"message":"old","data":{"requested":"1"}}})");
}

} // namespace
} // namespace kvr::netlistdb::tool
