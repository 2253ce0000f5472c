#pragma once

#include "design/Census.h"
#include "design/DeviceCensus.h"
#include "design/Form.h"
#include "output/ResultWriter.h"

namespace kvr::netlistdb::tool {

/// The result of `info`, in every format.
struct InfoReport {
    std::string top;
    Form form = Form::Elaborated;
    DeviceCensus devices;
    Census census;
    std::uint64_t clockDomains = 0;

    void write(Format format, OutputStream &stream, bool color) const;

  private:
    void writeJson(OutputStream &stream, bool lines) const;
    void writeCsv(OutputStream &stream) const;
    void writeTables(OutputStream &stream, bool color) const;
};

} // namespace kvr::netlistdb::tool
