#include "AttTable.h"

namespace Verific {

std::unique_ptr<AttTable> AttTable::clone() const
{
    auto copy = std::make_unique<AttTable>();
    copy->atts.reserve(atts.size() + 1);
    for (const std::unique_ptr<Att> &att : atts) {
        copy->atts.push_back(std::make_unique<Att>(*att));
    }
    return copy;
}

} // namespace Verific
