#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// Finds, among the names it is offered, the few that are most like one that does not exist.
class NearestNames {
  public:
    /// How often each letter occurs, upper and lower case together.
    using Letters = std::array<std::uint16_t, 256>;

    explicit NearestNames(std::string_view wanted);
    void offer(std::string_view name);
    /// Nearest first, equally near ones in byte order; at most three, none that is far.
    std::vector<std::string> best() const;

  private:
    struct Candidate {
        std::size_t distance;
        std::string name;
    };

    std::string m_wanted;
    Letters m_letters{};
    std::vector<Candidate> m_best;
};

/// `; did you mean 'a', 'b' or 'c'?`, or nothing without names.
std::string didYouMean(const std::vector<std::string> &names);

} // namespace kvr::netlistdb::tool
