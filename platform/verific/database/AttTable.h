#pragma once

#include "Att.h"

#include <memory>
#include <vector>

namespace Verific {

/// Attributes of an object in order of addition. Copies of an object share the table of the original until one of them
/// adds an attribute.
class AttTable {
  public:
    static void retain(AttTable *table)
    {
        if (table != nullptr) {
            ++table->m_users;
        }
    }
    static void release(AttTable *table)
    {
        if (table != nullptr && --table->m_users == 0) {
            delete table;
        }
    }

    bool shared() const { return m_users > 1; }
    /// A table of one user with the same attributes.
    std::unique_ptr<AttTable> clone() const;

    std::vector<std::unique_ptr<Att>> atts;

  private:
    unsigned m_users = 1;
};

} // namespace Verific
