#pragma once

#include <netlistdb/IDesignDatabase.h>

namespace testsupport {

constexpr auto ELABORATED = kvr::netlistdb::IDesignDatabase::SOURCE_ELABORATED;
constexpr auto POST_MAP = kvr::netlistdb::IDesignDatabase::SOURCE_POST_MAP;

} // namespace testsupport
