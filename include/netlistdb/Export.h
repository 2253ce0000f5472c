#pragma once

/// Marks what the shared library exports; everything else is hidden.
#if defined(_WIN32)
#define NETLISTDB_EXPORT
#else
#define NETLISTDB_EXPORT __attribute__((visibility("default")))
#endif
