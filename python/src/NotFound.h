#pragma once

#include <stdexcept>
#include <string>

namespace kvr::netlistdb::python {

/// A path or name that names nothing; the message has the nearest names.
class NotFound : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace kvr::netlistdb::python
