#pragma once

#include "search/CaseFold.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb {

class IVDBInstance;

/// Looks for one text in the full names of nets without building them. A hit lies in the net's own name, in the prefix
/// that all nets of the instance share, or across the two; what concerns the prefix is worked out once per instance,
/// and only when a net's own name does not hold the text already.
class FullNameText {
  public:
    /// With @p fold both sides are folded.
    /// @p text and the locale of @p fold must outlive this object.
    explicit FullNameText(const std::string &text, std::optional<CaseFold> fold = std::nullopt);
    FullNameText(const FullNameText &) = delete;
    FullNameText &operator=(const FullNameText &) = delete;

    /// The names that follow belong to nets of @p instance, which must live as long as they come.
    void enter(const IVDBInstance &instance);
    /// True when the text lies in the full name of the net called @p name. An empty text lies in every name.
    bool operator()(const std::string &name);

  private:
    std::string_view folded(const std::string &text);
    void readPrefix();
    bool isInPrefix() const { return m_carried == m_text.size(); }
    bool crossesInto(std::string_view name) const;
    void prepareBorders();
    /// How long a start of the text the characters read so far end with, after one more; never for a whole text.
    std::size_t step(std::size_t length, char next) const;

    std::optional<CaseFold> m_fold;
    std::string m_foldedText;
    std::string_view m_text;
    std::string m_buffer;
    const IVDBInstance *m_instance = nullptr; ///< whose prefix is still to be read
    /// Length of the longest start of the text that the prefix ends with; the whole length when the text lies in it.
    std::size_t m_carried = 0;
    /// For each length of a start of the text: the longest shorter start that it ends with.
    std::vector<std::size_t> m_borders;
};

} // namespace kvr::netlistdb
