#pragma once

// What the tests of the reader share: reading from a text, and printing what came of it.

#include "tests/support/LibsetGuard.h"

#include <DataBase.h>
#include <yosys/YosysReader.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace yosystest {

/// Reads a JSON text as the file "design.json".
Verific::Netlist *readText(std::string_view text, const kvr::netlistdb::yosys::ReadOptions &options = {});
/// Reads `{"modules": {@p modules}}`.
Verific::Netlist *readModules(std::string_view modules, const kvr::netlistdb::yosys::ReadOptions &options = {});
/// Message of the ReadError that reading the text throws; "no error" when it throws none.
std::string errorOf(std::string_view text);
std::string errorOfModules(std::string_view modules);

/// First netlist of a cell of the global libset; fails the test when there is none.
Verific::Netlist *netlistOf(const char *library, const char *cell);

/// A netlist in short lines, one per object, in the order of the netlist database:
///
///     work/top at top.v:1 {keep=1}
///     in clk = clk                      a port, its net, then as below
///     in bus d [3:0]
///     bus q [3:0] at top.v:4
///     net q[0] in q at top.v:4
///     ram mem 128
///     u1: work/sub (clk=clk, d=q[0]) #W=4
///     also d r 3 0 r.v:7 u_a r 0:3=q    a line of OTHER_NAMES, blanks for its tabs
///
/// Source positions ("at"), "protected", {attributes}, #parameters and the netlist's kind stand where there are any.
std::string print(const Verific::Netlist *netlist);
/// The lines of print() that begin with @p prefix.
std::string linesOf(const Verific::Netlist *netlist, std::string_view prefix);

/// Everything that the global libset holds, in full detail.
std::string dumpLibset();

/// Every test starts and ends with an empty netlist database.
class ReaderTest : public testing::Test {
  private:
    testsupport::LibsetGuard m_guard;
};

/// Has a folder for files that are read.
class FilesTest : public ReaderTest {
  protected:
    void SetUp() override;
    void TearDown() override { std::filesystem::remove_all(m_directory); }

    const std::filesystem::path &directory() const { return m_directory; }
    std::string path(const char *name) const { return (m_directory / name).string(); }
    /// Writes a file; returns its path.
    std::string write(const char *name, const std::string &text) const;

  private:
    std::filesystem::path m_directory;
};

} // namespace yosystest
