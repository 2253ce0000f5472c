#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::tool {

/// Finds, among the names it is offered, the few that are most like one that does not exist.
class NearestNames {
  public:
    explicit NearestNames(std::string_view wanted) : m_wanted(wanted) {}
    void offer(std::string_view name);
    /// Nearest first, equally near ones in byte order; at most three, none that is far.
    std::vector<std::string> best() const;

  private:
    struct Candidate {
        std::size_t distance;
        std::string name;
    };

    std::string m_wanted;
    std::vector<Candidate> m_best;
};

/// `; did you mean 'a', 'b' or 'c'?`, or nothing without names.
std::string didYouMean(const std::vector<std::string> &names);

} // namespace kvr::netlistdb::tool
