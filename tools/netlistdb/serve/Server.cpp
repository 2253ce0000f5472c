#include "serve/Server.h"

#include "base/Failure.h"

#include <array>
#include <fmt/format.h>
#include <new>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

/// Revisions whose sessions begin with `initialize`, the newest last.
constexpr std::array SESSION_REVISIONS = {"2025-06-18", "2025-11-25"};
constexpr const char *STATELESS_REVISION = "2026-07-28";

constexpr const char *VERSION_KEY = "io.modelcontextprotocol/protocolVersion";
constexpr const char *CAPABILITIES_KEY = "io.modelcontextprotocol/clientCapabilities";
constexpr const char *SERVER_KEY = "io.modelcontextprotocol/serverInfo";

/// The tools stay the same as long as the program runs; how long that is no client knows.
constexpr int TOOLS_STAY_MS = 60'000;

const Json *memberOf(const Json &object, const char *name)
{
    const auto found = object.find(name);
    return found != object.end() ? &*found : nullptr;
}

/// What the protocol adds to @p params; null when there is nothing.
const Json *metaOf(const Json &params)
{
    const Json *meta = memberOf(params, "_meta");
    return meta != nullptr && meta->is_object() ? meta : nullptr;
}

Json progressTokenOf(const Json &params)
{
    const Json *meta = metaOf(params);
    const Json *token = meta != nullptr ? memberOf(*meta, "progressToken") : nullptr;
    return token != nullptr && isRequestId(*token) ? *token : Json();
}

[[noreturn]] void refuse(RpcCode code, const std::string &message, const RpcMessage &request, Json data = nullptr)
{
    throw RpcFailure(code, message, request.id, std::move(data));
}

const std::string &textMember(const RpcMessage &request, const char *name)
{
    const Json *member = memberOf(request.params, name);
    if (member == nullptr || !member->is_string()) {
        refuse(RPC_INVALID_PARAMS, fmt::format("{}: the member {} is missing or no text", request.method, name),
               request);
    }
    return member->get_ref<const std::string &>();
}

void requireObject(const RpcMessage &request, const char *name)
{
    const Json *member = memberOf(request.params, name);
    if (member == nullptr || !member->is_object()) {
        refuse(RPC_INVALID_PARAMS, fmt::format("{}: the member {} is missing or no object", request.method, name),
               request);
    }
}

} // namespace

Server::Server(ToolBox &tools, MessageWriter &writer, Worker &worker, const std::string &version)
    : m_tools(tools), m_writer(writer), m_worker(worker),
      m_serverInfo({{"name", "netlistdb"}, {"title", "FPGA netlists"}, {"version", version}})
{
}

Server::~Server()
{
    m_worker.stop();
}

void Server::receive(std::string_view line)
{
    if (line.find_first_not_of(" \t") == std::string_view::npos) {
        return;
    }
    try {
        RpcMessage message = parseMessage(line);
        if (message.kind == RpcMessage::Kind::Notification) {
            notice(message);
        } else if (message.kind == RpcMessage::Kind::Request) {
            const bool isStateless = checkEnvelope(message);
            handle({std::move(message), isStateless});
        }
    } catch (const RpcFailure &failure) {
        m_writer.write(errorLine(failure));
    }
}

void Server::refuseLine(std::size_t longest)
{
    m_writer.write(
        errorLine(RpcFailure(RPC_INVALID_REQUEST, fmt::format("the message is longer than {} bytes", longest))));
}

/// Whether @p message is of the stateless revision.
/// @throws RpcFailure when it is of a revision that nobody here knows.
bool Server::checkEnvelope(const RpcMessage &message) const
{
    const Json *meta = metaOf(message.params);
    const Json *version = meta != nullptr ? memberOf(*meta, VERSION_KEY) : nullptr;
    if (version == nullptr) {
        return false;
    }
    if (!version->is_string()) {
        refuse(RPC_INVALID_PARAMS, fmt::format("_meta: {} is no text", VERSION_KEY), message);
    }
    if (*version != STATELESS_REVISION) {
        const std::string requested = version->get<std::string>();
        refuse(RPC_UNSUPPORTED_VERSION, "Unsupported protocol version: " + requested, message,
               {{"supported", Json::array({STATELESS_REVISION})}, {"requested", requested}});
    }
    const Json *capabilities = memberOf(*meta, CAPABILITIES_KEY);
    if (capabilities == nullptr || !capabilities->is_object()) {
        refuse(RPC_INVALID_PARAMS, fmt::format("_meta: {} is missing or no object", CAPABILITIES_KEY), message);
    }
    return true;
}

void Server::handle(Request request)
{
    const RpcMessage &message = request.message;
    const std::string &method = message.method;
    if (!request.isStateless && method == "initialize") {
        answer(request, initialize(message));
    } else if (!request.isStateless && method == "ping") {
        answer(request, Json::object());
    } else if (request.isStateless && method == "server/discover") {
        answer(request, discover());
    } else if (method != "tools/list" && method != "tools/call") {
        refuse(RPC_METHOD_NOT_FOUND, "Method not found: " + method, message);
    } else if (!request.isStateless && !m_isInitialized) {
        refuse(
            RPC_INVALID_REQUEST,
            fmt::format("the session has not begun: send initialize, or with every request {} in _meta", VERSION_KEY),
            message);
    } else if (method == "tools/list") {
        answer(request, listTools(request));
    } else {
        call(std::move(request));
    }
}

/// Notifications are never answered, whatever is wrong with them.
void Server::notice(const RpcMessage &notification)
{
    const Json *id = memberOf(notification.params, "requestId");
    if (notification.method != "notifications/cancelled" || id == nullptr || !isRequestId(*id)) {
        return;
    }
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_calls.find(jsonText(*id));
    if (found != m_calls.end()) {
        // Its id is free at once, however long the worker takes to see it.
        found->second->cancel();
        m_calls.erase(found);
    }
}

Json Server::initialize(const RpcMessage &message)
{
    const std::string &requested = textMember(message, "protocolVersion");
    requireObject(message, "capabilities");
    requireObject(message, "clientInfo");
    if (m_isInitialized) {
        refuse(RPC_INVALID_REQUEST, "the session has begun already", message);
    }
    m_isInitialized = true;
    const char *revision = SESSION_REVISIONS.back();
    for (const char *known : SESSION_REVISIONS) {
        revision = requested == known ? known : revision;
    }
    return {{"protocolVersion", revision},
            {"capabilities", {{"tools", Json::object()}}},
            {"serverInfo", m_serverInfo},
            {"instructions", m_tools.instructions()}};
}

Json Server::discover() const
{
    return {{"supportedVersions", Json::array({STATELESS_REVISION})},
            {"capabilities", {{"tools", Json::object()}}},
            {"instructions", m_tools.instructions()},
            {"ttlMs", TOOLS_STAY_MS},
            {"cacheScope", "private"}};
}

Json Server::listTools(const Request &request) const
{
    if (memberOf(request.message.params, "cursor") != nullptr) {
        refuse(RPC_INVALID_PARAMS, "tools/list: there is one page only, and no cursor", request.message);
    }
    Json result = {{"tools", m_tools.list()}};
    if (request.isStateless) {
        result["ttlMs"] = TOOLS_STAY_MS;
        result["cacheScope"] = "private";
    }
    return result;
}

void Server::call(Request request)
{
    const RpcMessage &message = request.message;
    const Tool &tool = m_tools.find(textMember(message, "name"), message.id);
    Json arguments = Json::object();
    if (const Json *given = memberOf(message.params, "arguments")) {
        requireObject(message, "arguments");
        arguments = *given;
    }
    auto call = std::make_shared<Call>(message.id, progressTokenOf(message.params), m_writer);
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (!m_calls.emplace(jsonText(message.id), call).second) {
            refuse(RPC_INVALID_REQUEST, "the id is that of a request that is not answered yet", message);
        }
    }
    m_worker.post([this, &tool, arguments = std::move(arguments), call = std::move(call),
                   isStateless = request.isStateless] { runCall(tool, arguments, call, isStateless); });
}

void Server::runCall(const Tool &tool, const Json &arguments, const std::shared_ptr<Call> &call, bool isStateless)
{
    std::string line;
    try {
        call->check();
        std::string more;
        if (isStateless) {
            more = R"(,"resultType":"complete","_meta":)" + jsonText({{SERVER_KEY, m_serverInfo}});
        }
        line = R"({"jsonrpc":"2.0","id":)" + jsonText(call->requestId()) + R"(,"result":)" +
               m_tools.run(tool, arguments, *call, more) + "}";
    } catch (const CallCancelled &) {
        forget(*call);
        return;
    } catch (const Failure &) {
        throw;
    } catch (const OutputClosed &) {
        throw;
    } catch (const Interrupted &) {
        throw;
    } catch (const std::bad_alloc &) {
        line = errorLine(RpcFailure(RPC_INTERNAL_ERROR, "not enough memory", call->requestId()));
    } catch (const std::exception &fault) {
        line = errorLine(RpcFailure(RPC_INTERNAL_ERROR, fault.what(), call->requestId()));
    }
    forget(*call);
    if (!call->isCancelled()) {
        m_writer.write(std::move(line));
    }
}

void Server::forget(const Call &call)
{
    const std::lock_guard<std::mutex> guard(m_lock);
    const auto found = m_calls.find(jsonText(call.requestId()));
    if (found != m_calls.end() && found->second.get() == &call) {
        m_calls.erase(found);
    }
}

void Server::answer(const Request &request, Json result)
{
    if (request.isStateless) {
        result["resultType"] = "complete";
        result["_meta"] = {{SERVER_KEY, m_serverInfo}};
    }
    m_writer.write(resultLine(request.message.id, result));
}

} // namespace kvr::netlistdb::tool
