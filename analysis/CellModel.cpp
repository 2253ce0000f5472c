#include "analysis/CellModel.h"

namespace kvr::netlistdb::analysis {

CaptureRole captureRoleOf(PinRole role)
{
    switch (role) {
    case PinRole::Enable:
        return CAPTURE_ENABLE;
    case PinRole::SetReset:
    case PinRole::AsyncSetReset:
    case PinRole::SyncSetReset:
        return CAPTURE_SET_RESET;
    default:
        return CAPTURE_DATA;
    }
}

std::size_t CellModel::memory() const
{
    return sizeof(*this) + pins.capacity() * sizeof(Pin) + groups.memory() +
           groupOutputs.capacity() * sizeof(std::uint32_t) + clocks.capacity() * sizeof(ClockPin) + launches.memory() +
           captures.memory();
}

} // namespace kvr::netlistdb::analysis
