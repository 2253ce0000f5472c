#include <netlistdb/NameText.h>

#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>

#include <typeinfo>

namespace kvr::netlistdb {

std::string_view nameText(const IVDBItem &item)
{
    // Exactly these classes: those derived from them may have a getName() of their own.
    const std::type_info *const type = &typeid(item);
    if (type == &typeid(VDBNet)) {
        return static_cast<const VDBNet &>(item).nameText();
    }
    if (type == &typeid(VDBInstance)) {
        return static_cast<const VDBInstance &>(item).nameText();
    }
    if (type == &typeid(VDBNetBus)) {
        return static_cast<const VDBNetBus &>(item).nameText();
    }
    return item.getName();
}

} // namespace kvr::netlistdb
