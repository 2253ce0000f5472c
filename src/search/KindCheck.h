#pragma once

#include <netlistdb/IVDBItem.h>

#include <cstddef>
#include <typeinfo>

namespace kvr::netlistdb {

/// dynamic_cast for many items in a row, most of which are of one class: it is asked again only when the class changes.
template <typename Kind> class KindCheck {
  public:
    /// @p item as a @p Kind, null when it is null or something else.
    Kind *operator()(IVDBItem *item)
    {
        if (item == nullptr) {
            return nullptr;
        }
        const std::type_info &type = typeid(*item);
        const std::ptrdiff_t place = placeOf(item);
        if (m_type == &type && m_place == place) {
            return static_cast<Kind *>(item);
        }
        auto *result = dynamic_cast<Kind *>(item);
        if (result != nullptr && static_cast<IVDBItem *>(result) == item) {
            m_type = &type;
            m_place = place;
        }
        return result;
    }

  private:
    /// Where in its object the item stands: a class may be an item in more than one way.
    static std::ptrdiff_t placeOf(IVDBItem *item)
    {
        return reinterpret_cast<const char *>(item) - static_cast<const char *>(dynamic_cast<const void *>(item));
    }

    const std::type_info *m_type = nullptr;
    std::ptrdiff_t m_place = 0;
};

} // namespace kvr::netlistdb
