#include "clock/DrivingPins.h"

#include "DataBase.h"

#include <utility>

namespace kvr::netlistdb {

Verific::PortRef *DrivingPins::find(const Verific::Net *net, const Verific::Instance *driver)
{
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    unsigned seen = 0;
    FOREACH_PORTREF_OF_INST (driver, pins, pin) {
        if (pin->GetNet() == net && pin->IsOutput()) {
            return pin;
        }
        if (++seen == MANY) {
            break;
        }
    }
    if (seen < MANY) {
        return nullptr;
    }
    auto wide = m_wide.find(driver);
    if (wide == m_wide.end()) {
        Outputs outputs;
        FOREACH_PORTREF_OF_INST (driver, pins, pin) {
            if (pin->IsOutput()) {
                outputs.try_emplace(pin->GetNet(), pin);
            }
        }
        wide = m_wide.emplace(driver, std::move(outputs)).first;
    }
    const auto found = wide->second.find(net);
    return found != wide->second.end() ? found->second : nullptr;
}

} // namespace kvr::netlistdb
