#include "serve/Rpc.h"

#include <utility>

namespace kvr::netlistdb::tool {

namespace {

/// Requests are flat. Values that are nested further are refused before anything walks them with recursion.
constexpr int DEEPEST = 64;
/// What is quoted of a message in a message of ours.
constexpr std::size_t LONGEST_QUOTE = 200;

/// What the parser says, without its own numbering in front.
std::string faultOf(const Json::exception &error)
{
    std::string text = error.what();
    const std::size_t end = text.find("] ");
    text.erase(0, end == std::string::npos ? 0 : end + 2);
    if (text.size() > LONGEST_QUOTE) {
        text.resize(LONGEST_QUOTE);
        text += "...";
    }
    return text;
}

Json parseJson(std::string_view line)
{
    const auto limitDepth = [](int depth, Json::parse_event_t /*event*/, const Json & /*parsed*/) {
        if (depth > DEEPEST) {
            throw RpcFailure(RPC_INVALID_REQUEST, "the message is nested too deeply");
        }
        return true;
    };
    try {
        return Json::parse(line.begin(), line.end(), limitDepth);
    } catch (const Json::exception &error) {
        throw RpcFailure(RPC_PARSE_ERROR, "no JSON: " + faultOf(error));
    }
}

} // namespace

RpcFailure::RpcFailure(RpcCode code, const std::string &message, Json id, Json data)
    : std::runtime_error(message), m_code(code), m_id(std::move(id)), m_data(std::move(data))
{
}

bool isRequestId(const Json &id)
{
    return id.is_string() || id.is_number_integer();
}

RpcMessage parseMessage(std::string_view line)
{
    Json json = parseJson(line);
    if (json.is_array()) {
        throw RpcFailure(RPC_INVALID_REQUEST, "batches are not part of the protocol: send one message a line");
    }
    if (!json.is_object()) {
        throw RpcFailure(RPC_INVALID_REQUEST, "a message is a JSON object");
    }
    RpcMessage message;
    const auto id = json.find("id");
    const bool hasId = id != json.end();
    if (hasId && isRequestId(*id)) {
        message.id = *id;
    }
    const auto fail = [&message](const char *text) { throw RpcFailure(RPC_INVALID_REQUEST, text, message.id); };
    const auto version = json.find("jsonrpc");
    if (version == json.end() || *version != "2.0") {
        fail("the member jsonrpc is not \"2.0\"");
    }
    const auto method = json.find("method");
    if (method == json.end() && (json.contains("result") || json.contains("error"))) {
        message.kind = RpcMessage::Kind::Response;
        return message;
    }
    if (method == json.end() || !method->is_string()) {
        fail("the member method is missing or no text");
    }
    if (hasId && message.id.is_null()) {
        fail("the member id is neither a text nor an integer");
    }
    message.kind = hasId ? RpcMessage::Kind::Request : RpcMessage::Kind::Notification;
    message.method = method->get<std::string>();
    if (const auto params = json.find("params"); params != json.end()) {
        if (!params->is_object()) {
            throw RpcFailure(RPC_INVALID_PARAMS, "the member params is no object", message.id);
        }
        message.params = std::move(*params);
    }
    return message;
}

std::string resultLine(const Json &id, const Json &result)
{
    return jsonText({{"jsonrpc", "2.0"}, {"id", id}, {"result", result}});
}

std::string errorLine(const RpcFailure &failure)
{
    Json error = {{"code", static_cast<int>(failure.code())}, {"message", failure.what()}};
    if (!failure.data().is_null()) {
        error["data"] = failure.data();
    }
    return jsonText({{"jsonrpc", "2.0"}, {"id", failure.id()}, {"error", error}});
}

} // namespace kvr::netlistdb::tool
