#pragma once

#include <mutex>
#include <string>

namespace kvr::netlistdb::tool {

/// The one writer of messages, a line each. Any thread may call it.
class MessageWriter {
  public:
    /// @p descriptor stays the caller's.
    explicit MessageWriter(int descriptor) : m_descriptor(descriptor) {}

    /// Writes @p line and its end.
    /// @throws OutputClosed when nobody reads any more, Failure when writing fails.
    void write(std::string line);

  private:
    std::mutex m_lock;
    int m_descriptor;
};

} // namespace kvr::netlistdb::tool
