#include "search/FullNameText.h"

#include "search/FullName.h"

#include <algorithm>

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
}

bool FullNameText::operator()(std::string_view name)
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

std::string_view FullNameText::folded(std::string_view text)
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
    m_overlap = std::min(prefix.size(), m_text.empty() ? 0 : m_text.size() - 1);
    while (m_overlap > 0 && prefix.substr(prefix.size() - m_overlap) != m_text.substr(0, m_overlap)) {
        --m_overlap;
    }
}

bool FullNameText::crossesInto(std::string_view name)
{
    if (m_overlap == 0) {
        return false;
    }
    m_seam = m_text.substr(0, m_overlap);
    m_seam += name.substr(0, m_text.size() - 1);
    return m_seam.find(m_text) != std::string::npos;
}

} // namespace kvr::netlistdb
