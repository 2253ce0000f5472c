#pragma once

#include "tests/support/LibsetGuard.h"

#include <netlistdb/analysis/Crossings.h>
#include <netlistdb/netlistdb.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace crossings_test {

using kvr::netlistdb::DesignDatabase;
using kvr::netlistdb::IDesignDatabase;
using kvr::netlistdb::analysis::ClockGroups;
using kvr::netlistdb::analysis::ClockId;
using kvr::netlistdb::analysis::ClockMap;
using kvr::netlistdb::analysis::Crossing;
using kvr::netlistdb::analysis::CrossingClass;
using kvr::netlistdb::analysis::Crossings;

/// One line for each crossing: `launch>capture from>to.pin class`, in their order.
using Lines = std::vector<std::string>;

/// Imports small netlists and shows their crossings.
class CrossingsTest : public ::testing::Test {
  protected:
    /// Units that the netlists of the tests are made of stand in front of @p text.
    void elaborated(const std::string &text);
    void postMap(const std::string &text);

    Lines lines(const std::vector<ClockGroups> &groups = {}) const;
    /// All classes of the only crossing whose target is called @p to.
    Lines classesOf(const std::string &to) const;
    /// The only crossing whose target is called @p to.
    Crossing crossingTo(const std::string &to) const;

    testsupport::LibsetGuard guard;
    DesignDatabase database{true};
    IDesignDatabase::SOURCE_TYPE source = IDesignDatabase::SOURCE_ELABORATED;
    std::unique_ptr<ClockMap> map;
};

} // namespace crossings_test
