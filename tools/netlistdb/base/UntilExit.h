#pragma once

#include <memory>
#include <utility>

#if defined(__has_feature)
#define NETLISTDB_HAS_FEATURE(feature) __has_feature(feature)
#else
#define NETLISTDB_HAS_FEATURE(feature) 0
#endif

namespace kvr::netlistdb::tool {

#if defined(__SANITIZE_ADDRESS__) || NETLISTDB_HAS_FEATURE(address_sanitizer)
inline constexpr bool FREES_AT_EXIT = true;
#else
inline constexpr bool FREES_AT_EXIT = false;
#endif

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
        if (!FREES_AT_EXIT) {
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

#undef NETLISTDB_HAS_FEATURE
