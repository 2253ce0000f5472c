#pragma once

#include "memory/Sanitizers.h"

#include <memory>
#include <utility>

namespace kvr::netlistdb::tool {

/// Holds an object that is needed until the process ends, such as a design. The system takes the memory of a process
/// back at once; deleting millions of objects before takes longer than most commands. Builds with the address sanitizer
/// delete it, so that leaks show.
///
/// Only for objects whose destructors do nothing but free memory.
template <class T> class UntilExit {
  public:
    explicit UntilExit(std::unique_ptr<T> object) : m_object(std::move(object)) {}
    ~UntilExit()
    {
        if (!memory::HAS_ADDRESS_SANITIZER) {
            static_cast<void>(m_object.release());
        }
    }
    UntilExit(const UntilExit &) = delete;
    UntilExit &operator=(const UntilExit &) = delete;

    T &operator*() const { return *m_object; }
    T *operator->() const { return m_object.get(); }

  private:
    std::unique_ptr<T> m_object;
};

} // namespace kvr::netlistdb::tool
