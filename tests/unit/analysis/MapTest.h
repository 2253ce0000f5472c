#pragma once

#include "tests/unit/clock/ClockTest.h"

#include <netlistdb/analysis/ClockMap.h>

#include <memory>
#include <string>

namespace analysis_test {

using clock_test::ELABORATED;
using clock_test::POST_MAP;
using kvr::netlistdb::DesignDatabase;
using kvr::netlistdb::IDesignDatabase;
using kvr::netlistdb::IVDBInstance;
using kvr::netlistdb::IVDBNet;
using kvr::netlistdb::analysis::ChainStep;
using kvr::netlistdb::analysis::Clock;
using kvr::netlistdb::analysis::ClockMap;

/// The map of one netlist, asked and answered in text.
class MapTest : public clock_test::ClockTest {
  protected:
    /// Imports the netlist text and builds the map.
    void elaboratedMap(const char *netlist);
    void postMapMap(const char *netlist);

    /// `clk:0 other:2 | network:0 | port latch`: clocks with the cells between, networks likewise, then what else
    /// reaches the net; the bars stand when there is something behind them.
    std::string launch(const std::string &net, const std::string &path = "") const;
    /// `clk:data+enable other:reset | port`
    std::string capture(const std::string &net, const std::string &path = "") const;
    /// `port clk`, `port clk inverted`, `logic u/g (clock)`: kind and full name of the root; "(clock)" when it is one.
    std::string electrical(const std::string &net, const std::string &path = "") const;
    /// One line a clock: `name kind rise+fall registers <- parent parent = other name`.
    std::string clocks() const;

    IVDBInstance *instanceOf(const std::string &path) const;
    IVDBNet *netIn(const std::string &path, const std::string &net) const;

    IDesignDatabase::SOURCE_TYPE source = ELABORATED;
    std::unique_ptr<ClockMap> map;
};

/// The bits of a mask of Reaching, in words.
std::string reachingText(std::uint32_t flags);

} // namespace analysis_test
