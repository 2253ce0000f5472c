#include "clock/DrivingPin.h"

#include "DataBase.h"

#include <cstddef>
#include <limits>

namespace kvr::netlistdb {

namespace {

/// Pins that are looked through on one side before the other has its turn.
constexpr std::size_t FEW_PINS = 8;

bool drives(const Verific::PortRef *pin, const Verific::Net *net)
{
    return pin->GetNet() == net && pin->IsOutput();
}

/// What a look through a limited number of pins has come to.
struct Look {
    bool isDecided;
    const Verific::PortRef *pin; ///< null also when there is none
};

/// Looks among the first @p limit pins of @p driver.
Look lookOnInstance(const Verific::Net *net, const Verific::Instance *driver, std::size_t limit)
{
    Verific::MapIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_INST (driver, pins, pin) {
        if (drives(pin, net)) {
            return {true, pin};
        }
        if (--limit == 0) {
            return {false, nullptr};
        }
    }
    return {true, nullptr};
}

/// Looks among the first @p limit pins on @p net. Two outputs of the driver on it leave the matter open: which is the
/// first depends on the order of the instance's pins.
Look lookOnNet(const Verific::Net *net, const Verific::Instance *driver, std::size_t limit)
{
    const Verific::PortRef *only = nullptr;
    Verific::SetIter pins;
    Verific::PortRef *pin = nullptr;
    FOREACH_PORTREF_OF_NET (net, pins, pin) {
        if (pin->GetInst() == driver && pin->IsOutput()) {
            if (only != nullptr) {
                return {false, nullptr};
            }
            only = pin;
        }
        if (--limit == 0) {
            return {false, nullptr};
        }
    }
    return {true, only};
}

} // namespace

const Verific::PortRef *drivingPin(const Verific::Net *net, const Verific::Instance *driver)
{
    for (std::size_t limit = FEW_PINS; limit <= std::numeric_limits<std::size_t>::max() / 2; limit *= 2) {
        Look look = lookOnInstance(net, driver, limit);
        if (!look.isDecided) {
            look = lookOnNet(net, driver, limit);
        }
        if (look.isDecided) {
            return look.pin;
        }
    }
    return nullptr;
}

} // namespace kvr::netlistdb
