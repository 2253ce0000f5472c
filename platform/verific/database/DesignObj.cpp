#include "DesignObj.h"

#include "AttTable.h"
#include "memory/SmallObjects.h"

#include <cstring>
#include <memory>
#include <utility>

namespace Verific {

DesignObj::DesignObj(const char *name) : DesignObj(SharedName(name)) {}

DesignObj::DesignObj(SharedName name) : m_name(std::move(name)), m_protected(false), m_userDeclared(false) {}

DesignObj::~DesignObj()
{
    AttTable::release(m_atts);
}

Att *DesignObj::GetAtt(const char *key) const
{
    if (m_atts == nullptr || key == nullptr) {
        return nullptr;
    }
    for (const std::unique_ptr<Att> &att : m_atts->atts) {
        if (att->Key() != nullptr && std::strcmp(att->Key(), key) == 0) {
            return att.get();
        }
    }
    return nullptr;
}

const char *DesignObj::GetAttValue(const char *key) const
{
    const Att *att = GetAtt(key);
    return att != nullptr ? att->Value() : nullptr;
}

void DesignObj::AddAtt(Att *att)
{
    std::unique_ptr<Att> mine(att);
    if (mine == nullptr) {
        return;
    }
    if (m_atts == nullptr) {
        auto table = std::make_unique<AttTable>();
        table->atts.push_back(std::move(mine));
        m_atts = table.release();
    } else if (m_atts->shared()) {
        std::unique_ptr<AttTable> table = m_atts->clone();
        table->atts.push_back(std::move(mine));
        AttTable::release(m_atts);
        m_atts = table.release();
    } else {
        m_atts->atts.push_back(std::move(mine));
    }
}

bool DesignObj::nextAttribute(MapIter &iter, Att *&att) const
{
    if (iter.position() >= attributeCount()) {
        att = nullptr;
        return false;
    }
    att = m_atts->atts[iter.position()].get();
    iter.setPosition(iter.position() + 1);
    return true;
}

unsigned DesignObj::attributeCount() const
{
    return m_atts != nullptr ? static_cast<unsigned>(m_atts->atts.size()) : 0;
}

void *DesignObj::operator new(std::size_t size)
{
    return kvr::memory::allocateObject(size);
}

void DesignObj::operator delete(void *object, std::size_t size) noexcept
{
    kvr::memory::freeObject(object, size);
}

void DesignObj::copyTraits(const DesignObj &other)
{
    AttTable::retain(other.m_atts);
    AttTable::release(m_atts);
    m_atts = other.m_atts;
    m_linefile = other.m_linefile;
    m_protected = other.m_protected;
    m_userDeclared = other.m_userDeclared;
}

} // namespace Verific
