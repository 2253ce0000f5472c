#pragma once

#include "output/Json.h"
#include "serve/Call.h"
#include "serve/MessageWriter.h"
#include "serve/Rpc.h"
#include "serve/ToolBox.h"
#include "serve/Worker.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace kvr::netlistdb::tool {

/// The Model Context Protocol, from messages to answers: revisions 2025-06-18 and 2025-11-25, in which a session begins
/// with `initialize`, and 2026-07-28, in which every request says for itself which revision it is of.
///
/// What needs no design is answered at once; calls of tools are done by the worker, so that messages are read
/// meanwhile.
class Server {
  public:
    /// @p version is that of the program. What is handed in must outlive the object.
    Server(ToolBox &tools, MessageWriter &writer, Worker &worker, const std::string &version);
    /// Stops the worker.
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    /// Takes one line of the client. For one thread.
    /// @throws OutputClosed, Failure when an answer cannot be written.
    void receive(std::string_view line);
    /// Refuses a line of more than @p longest bytes.
    void refuseLine(std::size_t longest);

  private:
    /// A request, and how its revision wants the result.
    struct Request {
        RpcMessage message;
        bool isStateless = false;
    };

    void handle(Request request);
    void notice(const RpcMessage &notification);
    bool checkEnvelope(const RpcMessage &message) const;
    Json initialize(const RpcMessage &message);
    Json discover() const;
    Json listTools(const Request &request) const;
    void call(Request request);
    void runCall(const Tool &tool, const Json &arguments, const std::shared_ptr<Call> &call, bool isStateless);
    void forget(const Call &call);
    void answer(const Request &request, Json result);

    ToolBox &m_tools;
    MessageWriter &m_writer;
    Worker &m_worker;
    Json m_serverInfo;
    bool m_isInitialized = false;
    std::mutex m_lock;                                    ///< guards m_calls
    std::map<std::string, std::shared_ptr<Call>> m_calls; ///< that are not answered yet, by request
};

} // namespace kvr::netlistdb::tool
