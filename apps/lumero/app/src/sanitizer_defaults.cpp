// Leak checker defaults of the host's binaries, linked into each of them. The libraries
// below keep caches and driver state for the life of the process (fonts, the platform
// plug-ins, Mesa's software OpenGL), which the leak checker would report at exit.
#if defined(__SANITIZE_ADDRESS__)
#define LUMERO_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define LUMERO_ASAN 1
#endif
#endif

#ifdef LUMERO_ASAN
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n"
           "leak:libqoffscreen.so\n"
           "leak:libqxcb.so\n"
           "leak:libQt5XcbQpa.so\n"
           "leak:libxcb\n"
           "leak:libX11.so\n"
           "leak:libGLX_mesa.so\n"
           "leak:swrast_dri.so\n"
           "leak:libLLVM\n"
           "leak:libdbus-1.so\n"
           "leak:QPlatformScreen\n"
           "leak:QWindowSystemInterface::handleScreenAdded\n";
}
extern "C" const char* __lsan_default_options()
{
    return "print_suppressions=0";
}
#endif
