#include <netlistdb/DesignDatabase.h>

#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/VDBHelper.h>
#include <netlistdb/VDBResultSet.h>

#include <functional>
#include <memory>
#include <utility>

namespace kvr::netlistdb {

IVDBResultSet *DesignDatabase::search(const VDBSearchParam &param)
{
    auto iterator = std::make_unique<BFSItemIterator>(this, param);
    std::function<bool()> predicate = [walk = iterator.get(), param] { return VDBHelper::matchParam(walk, param); };
    auto results = std::make_unique<VDBResultSet>(iterator.get(), std::move(predicate));
    static_cast<void>(iterator.release()); // now the result set's
    return results.release();
}

} // namespace kvr::netlistdb
