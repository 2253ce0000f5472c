#pragma once

#include "design/Census.h"
#include "design/DeviceCensus.h"
#include "design/Form.h"
#include "output/Json.h"
#include "output/ResultWriter.h"

namespace kvr::netlistdb::tool {

/// The result of `info`, in every format.
struct InfoReport {
    std::string top;
    Form form;
    const DeviceCensus &devices;
    const Census &census;
    std::uint64_t clockDomains;

    void write(Format format, OutputStream &stream, bool color) const;
    /// The design as a whole.
    Json overview() const;
    /// Its instances by depth.
    Json levels() const;

  private:
    void writeJson(OutputStream &stream, bool lines) const;
    void writeCsv(OutputStream &stream) const;
    void writeTables(OutputStream &stream, bool color) const;
};

/// The definitions of one name.
Json jsonOf(const ModuleCensus &module);

} // namespace kvr::netlistdb::tool
