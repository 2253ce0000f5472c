#include "search/FullNameText.h"

#include "search/FullName.h"

#include <algorithm>
#include <cstddef>

namespace kvr::netlistdb {

FullNameText::FullNameText(const std::string &text, std::optional<CaseFold> fold) : m_fold(fold), m_text(text)
{
    if (m_fold) {
        m_fold->fold(text, m_foldedText);
        m_text = m_foldedText;
    }
}

void FullNameText::enter(const IVDBInstance &instance)
{
    m_instance = &instance;
    m_isInPrefix = false;
    m_rests.clear();
}

bool FullNameText::operator()(const std::string &name)
{
    if (m_isInPrefix) {
        return true;
    }
    std::string_view searched = folded(name);
    if (searched.find(m_text) != std::string_view::npos) {
        return true;
    }
    if (m_instance != nullptr) {
        readPrefix();
        searched = folded(name);
    }
    return m_isInPrefix || crossesInto(searched);
}

std::string_view FullNameText::folded(const std::string &text)
{
    if (!m_fold) {
        return text;
    }
    m_fold->fold(text, m_buffer);
    return m_buffer;
}

void FullNameText::readPrefix()
{
    const std::string unfolded = netNamePrefix(m_instance);
    m_instance = nullptr;
    const std::string_view prefix = folded(unfolded);
    m_isInPrefix = prefix.find(m_text) != std::string_view::npos;
    for (std::size_t length = 1; length < m_text.size() && length <= prefix.size(); ++length) {
        if (prefix.substr(prefix.size() - length) == m_text.substr(0, length)) {
            m_rests.push_back(m_text.substr(length));
        }
    }
}

bool FullNameText::crossesInto(std::string_view name) const
{
    return std::any_of(m_rests.begin(), m_rests.end(),
                       [name](std::string_view rest) { return name.substr(0, rest.size()) == rest; });
}

} // namespace kvr::netlistdb
