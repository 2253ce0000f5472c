#pragma once

/// Marks what the embedded netlist database exports from its shared library.
#define VERIFIC_EXPORT __attribute__((visibility("default")))
