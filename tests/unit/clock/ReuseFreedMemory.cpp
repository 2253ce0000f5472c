// With the address sanitizer, freed memory is given out again at once in programs that contain this file, as it is
// without: stale addresses come back to life, and later items may lie before earlier ones.

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define WITH_ADDRESS_SANITIZER
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define WITH_ADDRESS_SANITIZER
#endif

#ifdef WITH_ADDRESS_SANITIZER
extern "C" __attribute__((visibility("default"))) const char *__asan_default_options()
{
    return "quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
}
#endif
