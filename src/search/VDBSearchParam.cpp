#include <netlistdb/VDBSearchParam.h>

namespace kvr::netlistdb {

VDBSearchParam::VDBSearchParam() = default;
VDBSearchParam::VDBSearchParam(const VDBSearchParam &other) = default;
VDBSearchParam::~VDBSearchParam() = default;
VDBSearchParam &VDBSearchParam::operator=(const VDBSearchParam &other) = default;

} // namespace kvr::netlistdb
