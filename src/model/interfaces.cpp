// The destructors of the interfaces stand here, so that each interface has one home for its virtual table.

#include <netlistdb/IClockDomain.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBItem.h>
#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBase.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>
#include <netlistdb/IWidth.h>

namespace kvr::netlistdb {

IVDBItem::~IVDBItem() = default;
IWidth::~IWidth() = default;
IVDBNetBase::~IVDBNetBase() = default;
IVDBNet::~IVDBNet() = default;
IVDBNetBus::~IVDBNetBus() = default;
IVDBNetlist::~IVDBNetlist() = default;
IVDBPort::~IVDBPort() = default;
IVDBInstance::~IVDBInstance() = default;
IClockDomain::~IClockDomain() = default;
IVDBLineInfo::~IVDBLineInfo() = default;

} // namespace kvr::netlistdb
