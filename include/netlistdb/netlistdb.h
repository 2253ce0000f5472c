#pragma once

// Everything that callers see.

#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IClockDomain.h>
#include <netlistdb/IDesignDatabase.h>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBItem.h>
#include <netlistdb/IVDBLineInfo.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBase.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>
#include <netlistdb/IVDBResultSet.h>
#include <netlistdb/IWidth.h>
#include <netlistdb/NameText.h>
#include <netlistdb/PooledItem.h>
#include <netlistdb/SearchResults.h>
#include <netlistdb/TreeIterator.h>
#include <netlistdb/VDBClockDomain.h>
#include <netlistdb/VDBHelper.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBLineInfo.h>
#include <netlistdb/VDBLiveItems.h>
#include <netlistdb/VDBNet.h>
#include <netlistdb/VDBNetBus.h>
#include <netlistdb/VDBNetlist.h>
#include <netlistdb/VDBPort.h>
#include <netlistdb/VDBResultSet.h>
#include <netlistdb/VDBSearchParam.h>
