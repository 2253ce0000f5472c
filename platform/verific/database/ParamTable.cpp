#include "ParamTable.h"

#include <cstring>

namespace Verific {

void ParamTable::reserve(unsigned count)
{
    m_texts.reserve(count);
    m_map.reserve(count);
}

std::unique_ptr<ParamTable> ParamTable::clone() const
{
    auto copy = std::make_unique<ParamTable>();
    copy->reserve(static_cast<unsigned>(m_texts.size()) + 1);
    for (const Texts &texts : m_texts) {
        copy->m_texts.push_back(texts);
        copy->m_map.append(texts.key.get(), texts.value.get());
    }
    return copy;
}

bool ParamTable::add(const SharedName &key, const SharedName &value)
{
    m_texts.push_back(Texts{key, value});
    try {
        if (m_map.Insert(key.get(), value.get()) != 0) {
            return true;
        }
    } catch (...) {
        m_texts.pop_back();
        throw;
    }
    m_texts.pop_back();
    return false;
}

void ParamTable::set(const SharedName &key, const SharedName &value)
{
    if (add(key, value)) {
        return;
    }
    for (Texts &texts : m_texts) {
        if (std::strcmp(texts.key.get(), key.get()) == 0) {
            m_map.Insert(texts.key.get(), value.get(), 1);
            texts.value = value;
            return;
        }
    }
}

} // namespace Verific
