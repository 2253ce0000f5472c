#pragma once

#include "output/Json.h"
#include "serve/MessageWriter.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

namespace kvr::netlistdb::tool {

/// The client has cancelled a call, which ends without an answer.
class CallCancelled {};

/// One call of a tool, on its way through the server.
class Call {
  public:
    /// @p progressToken is null when the client wants no progress.
    Call(Json requestId, Json progressToken, MessageWriter &writer);

    const Json &requestId() const { return m_requestId; }
    /// From any thread.
    void cancel() { m_isCancelled = true; }
    bool isCancelled() const { return m_isCancelled; }
    /// @throws CallCancelled
    void check() const;

    /// Tells the client what begins, when it wants to know.
    void begin(const std::string &what);
    /// Counts a step of the work; tells the client now and then. @p found is the number of results so far.
    /// @throws CallCancelled
    void step(std::uint64_t found);

  private:
    void tell(const std::string &message);

    Json m_requestId;
    Json m_progressToken;
    MessageWriter &m_writer;
    std::atomic<bool> m_isCancelled{false};
    std::uint64_t m_steps = 0; ///< never goes back, as the protocol wants it
    std::chrono::steady_clock::time_point m_told;
};

} // namespace kvr::netlistdb::tool
