#pragma once

#include <stdexcept>

namespace kvr::netlistdb::python {

/// The design of a handle has been closed.
class Closed : public std::runtime_error {
  public:
    Closed() : std::runtime_error("the design has been closed") {}
};

} // namespace kvr::netlistdb::python
