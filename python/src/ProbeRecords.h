#pragma once

#include "Handles.h"

#include <netlistdb/analysis/ProbeReport.h>
#include <pybind11/pybind11.h>

namespace kvr::netlistdb::python {

/// Builds the probe report of a design unless it is there.
void needReport(const Origin &origin, const pybind11::object &progress);

/// What there is to say about probing @p item, as a Probe. The clock map is there.
pybind11::object probeRecord(const Origin &origin, const pybind11::object &item, const analysis::SignalReport &report);

/// What a net is in the form @p other, as a Match.
pybind11::object matchRecord(const Origin &other, const analysis::ProbeMatch &match);

/// Adds the class that goes through what may be probed.
void bindProbeWalks(pybind11::module_ &module);

} // namespace kvr::netlistdb::python
