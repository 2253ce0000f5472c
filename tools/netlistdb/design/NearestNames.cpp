#include "design/NearestNames.h"

#include <algorithm>
#include <tuple>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t MOST = 3;
/// Longer names are compared by their beginnings: the cost is that of the product of the lengths.
constexpr std::size_t LONGEST = 256;

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// What an edit (insert, delete, replace, swap neighbours) costs; a mere change of case costs 1.
constexpr std::size_t EDIT = 4;

/// True when the edits that make @p b of a name of @p size letters @p a certainly cost more than @p limit: an edit adds
/// one letter at most, and takes one away at most.
bool isFar(const NearestNames::Letters &a, std::size_t size, std::string_view b, std::size_t limit)
{
    const std::size_t longer = b.size() < size ? size - b.size() : 0;
    const std::size_t most = limit / EDIT;
    if (longer > most || b.size() > size + most) {
        return true;
    }
    NearestNames::Letters left = a;
    std::size_t added = 0;
    for (const char c : b) {
        std::uint16_t &count = left[static_cast<unsigned char>(lower(c))];
        if (count > 0) {
            --count;
        } else if (longer + ++added > most) {
            return true;
        }
    }
    return false;
}

/// Cost of the edits that make @p b of @p a. Gives up beyond @p limit.
std::size_t editCost(std::string_view a, std::string_view b, std::size_t limit)
{
    std::vector<std::size_t> before;
    std::vector<std::size_t> above(b.size() + 1);
    std::vector<std::size_t> here(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        above[j] = EDIT * j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        here[0] = EDIT * i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const char x = a[i - 1];
            const char y = b[j - 1];
            const std::size_t change = x == y ? 0 : lower(x) == lower(y) ? 1 : EDIT;
            here[j] = std::min({above[j - 1] + change, above[j] + EDIT, here[j - 1] + EDIT});
            if (i > 1 && j > 1 && x == b[j - 2] && y == a[i - 2]) {
                here[j] = std::min(here[j], before[j - 2] + EDIT);
            }
        }
        if (*std::min_element(here.begin(), here.end()) > limit + EDIT) {
            return limit + 1;
        }
        before = above;
        std::swap(above, here);
    }
    return above[b.size()];
}

/// True when @p part, which is longer than two letters, occurs in @p name.
bool holds(std::string_view name, std::string_view part)
{
    return part.size() >= 3 && name.find(part) != std::string_view::npos;
}

} // namespace

NearestNames::NearestNames(std::string_view wanted) : m_wanted(wanted)
{
    for (const char c : wanted.substr(0, LONGEST)) {
        ++m_letters[static_cast<unsigned char>(lower(c))];
    }
}

void NearestNames::offer(std::string_view name)
{
    const std::size_t farthest = std::max(EDIT, EDIT * m_wanted.size() / 3);
    const std::size_t limit = m_best.size() == MOST ? m_best.back().distance : farthest;
    const std::string_view wanted = std::string_view(m_wanted).substr(0, LONGEST);
    const std::string_view given = name.substr(0, LONGEST);
    // Names come by the million, and most are far.
    std::size_t distance = isFar(m_letters, wanted.size(), given, limit) ? limit + 1 : editCost(wanted, given, limit);
    if (holds(name, m_wanted)) {
        distance = std::min(distance, farthest);
    }
    if (distance > limit) {
        return;
    }
    const auto nearer = [](const Candidate &a, const Candidate &b) {
        return std::tie(a.distance, a.name) < std::tie(b.distance, b.name);
    };
    Candidate candidate{distance, std::string(name)};
    const auto place = std::lower_bound(m_best.begin(), m_best.end(), candidate, nearer);
    if (place != m_best.end() && place->name == name) {
        return;
    }
    m_best.insert(place, std::move(candidate));
    if (m_best.size() > MOST) {
        m_best.pop_back();
    }
}

std::vector<std::string> NearestNames::best() const
{
    std::vector<std::string> names;
    for (const Candidate &candidate : m_best) {
        names.push_back(candidate.name);
    }
    return names;
}

std::string didYouMean(const std::vector<std::string> &names)
{
    std::string text;
    for (std::size_t at = 0; at < names.size(); ++at) {
        text += at == 0 ? "; did you mean '" : at + 1 < names.size() ? ", '" : " or '";
        text += names[at] + "'";
    }
    return text.empty() ? text : text + "?";
}

} // namespace kvr::netlistdb::tool
