#include "serve/Call.h"

#include <fmt/format.h>
#include <utility>

namespace kvr::netlistdb::tool {

namespace {

constexpr auto PAUSE = std::chrono::milliseconds(200);
/// Steps are short: the clock is asked after so many of them.
constexpr std::uint64_t STEPS = 256;

} // namespace

Call::Call(Json requestId, Json progressToken, MessageWriter &writer)
    : m_requestId(std::move(requestId)), m_progressToken(std::move(progressToken)), m_writer(writer),
      m_told(std::chrono::steady_clock::now())
{
}

void Call::check() const
{
    if (m_isCancelled) {
        throw CallCancelled();
    }
}

void Call::begin(const std::string &what)
{
    check();
    ++m_steps;
    tell(what);
}

void Call::step(std::uint64_t found)
{
    check();
    if (++m_steps % STEPS == 0 && std::chrono::steady_clock::now() - m_told >= PAUSE) {
        tell(fmt::format("{} found so far", found));
    }
}

void Call::tell(const std::string &message)
{
    m_told = std::chrono::steady_clock::now();
    if (m_progressToken.is_null()) {
        return;
    }
    m_writer.write(
        jsonText({{"jsonrpc", "2.0"},
                  {"method", "notifications/progress"},
                  {"params", {{"progressToken", m_progressToken}, {"progress", m_steps}, {"message", message}}}}));
}

} // namespace kvr::netlistdb::tool
