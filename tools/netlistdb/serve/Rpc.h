#pragma once

#include "output/Json.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// Error codes of JSON-RPC 2.0, and of the Model Context Protocol.
enum RpcCode : int {
    RPC_PARSE_ERROR = -32700,
    RPC_INVALID_REQUEST = -32600,
    RPC_METHOD_NOT_FOUND = -32601,
    RPC_INVALID_PARAMS = -32602,
    RPC_INTERNAL_ERROR = -32603,
    RPC_UNSUPPORTED_VERSION = -32022,
};

/// What a request ends with when it has no result.
class RpcFailure : public std::runtime_error {
  public:
    /// @p id is that of the request; null when it is not known. @p data is null when there is nothing to add.
    RpcFailure(RpcCode code, const std::string &message, Json id = nullptr, Json data = nullptr);

    RpcCode code() const { return m_code; }
    const Json &id() const { return m_id; }
    const Json &data() const { return m_data; }

  private:
    RpcCode m_code;
    Json m_id;
    Json m_data;
};

/// One message of the other side.
struct RpcMessage {
    enum class Kind { Request, Notification, Response };

    Kind kind = Kind::Notification;
    Json id; ///< an integer or a text; null in a notification
    std::string method;
    Json params = Json::object();
};

/// Understands one line. Members that JSON-RPC does not know are ignored.
/// @throws RpcFailure for what is no message.
RpcMessage parseMessage(std::string_view line);

/// True for what may identify a request: an integer or a text.
bool isRequestId(const Json &id);

/// The lines that end a request.
std::string resultLine(const Json &id, const Json &result);
std::string errorLine(const RpcFailure &failure);

} // namespace kvr::netlistdb::tool
