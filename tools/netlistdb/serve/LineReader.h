#pragma once

#include <cstddef>
#include <string>

namespace kvr::netlistdb::tool {

/// Reads lines from a descriptor, of any length up to a bound; longer ones are skipped without being kept.
class LineReader {
  public:
    /// @p stop is a descriptor: once it can be read, there are no more lines; -1 for none.
    LineReader(int descriptor, int stop, std::size_t longest)
        : m_descriptor(descriptor), m_stop(stop), m_longest(longest)
    {
    }

    enum class Kind {
        Line,
        TooLong, ///< a line that was skipped
        End,     ///< of the input
        Stopped,
    };
    /// Waits for the next line, which goes to @p line without its end. A last line may lack its end.
    /// @throws Failure when reading fails.
    Kind next(std::string &line);

  private:
    bool wait() const;
    bool fill();

    int m_descriptor;
    int m_stop;
    std::size_t m_longest;
    std::string m_buffer;
    std::size_t m_begin = 0; ///< of what was not handed out yet
    bool m_isAtEnd = false;
};

} // namespace kvr::netlistdb::tool
