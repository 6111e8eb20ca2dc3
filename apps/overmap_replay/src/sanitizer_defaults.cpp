// Leak checker defaults of the binaries that draw pictures, linked into each of them.
// Fontconfig keeps a cache for the life of the process, which the leak checker would
// report after the first text has been drawn.
#if defined(__SANITIZE_ADDRESS__)
#define OVERMAP_REPLAY_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define OVERMAP_REPLAY_ASAN 1
#endif
#endif

#ifdef OVERMAP_REPLAY_ASAN
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n";
}
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}
#endif
