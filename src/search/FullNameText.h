#pragma once

#include "search/CaseFold.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

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
    bool operator()(std::string_view name);

  private:
    std::string_view folded(std::string_view text);
    void readPrefix();
    bool crossesInto(std::string_view name);

    std::optional<CaseFold> m_fold;
    std::string m_foldedText;
    std::string_view m_text;
    std::string m_buffer;
    const IVDBInstance *m_instance = nullptr; ///< whose prefix is still to be read
    bool m_isInPrefix = false;
    std::size_t m_overlap =
        0;              ///< length of the longest start of the text, but for all of it, that the prefix ends with
    std::string m_seam; ///< that start and the start of a name
};

} // namespace kvr::netlistdb
