#include "search/FullNameText.h"

#include "search/FullName.h"

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
    m_carried = 0;
}

bool FullNameText::operator()(const std::string &name)
{
    if (isInPrefix()) {
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
    return isInPrefix() || crossesInto(searched);
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
    prepareBorders();
    for (const char c : prefix) {
        m_carried = step(m_carried, c);
        if (isInPrefix()) {
            return;
        }
    }
}

bool FullNameText::crossesInto(std::string_view name) const
{
    std::size_t length = m_carried;
    // Once a start begins in the name itself, the rest of the name has been searched already.
    for (std::size_t i = 0; length > i && i < name.size(); ++i) {
        length = step(length, name[i]);
        if (length == m_text.size()) {
            return true;
        }
    }
    return false;
}

void FullNameText::prepareBorders()
{
    if (!m_borders.empty()) {
        return;
    }
    m_borders.assign(m_text.size() + 1, 0);
    for (std::size_t length = 1; length < m_text.size(); ++length) {
        m_borders[length + 1] = step(m_borders[length], m_text[length]);
    }
}

std::size_t FullNameText::step(std::size_t length, char next) const
{
    while (length > 0 && m_text[length] != next) {
        length = m_borders[length];
    }
    return m_text[length] == next ? length + 1 : 0;
}

} // namespace kvr::netlistdb
