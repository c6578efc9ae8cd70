// The version the library reports, and its one-line banner.
#include "errors/build_info.h"
#include "kescomn/debug.h"

#ifdef NDEBUG
#define KESCOMN_BUILD_KIND "OPT"
static constexpr CS_BOOL is_debug_build = 0;
#else
#define KESCOMN_BUILD_KIND "DEBUG"
static constexpr CS_BOOL is_debug_build = 1;
#endif

#define KESCOMN_DRIVER_SUFFIX "EBF1"

extern "C" {

const CS_CHAR *com_version(CS_BOOL *debug)
{
    if (debug != nullptr)
        *debug = is_debug_build;
    return KESCOMN_VERSION;
}

const CS_CHAR *com_get_driverversionsuffix(void) { return KESCOMN_DRIVER_SUFFIX; }

// Maker and product, version, patch level, driver version, platform, build
// system, build number, word size, build kind, build date.
const CS_CHAR *com_version_banner(void)
{
    return "Kestor/Common-Library/" KESCOMN_VERSION "/P/" KESCOMN_VERSION "-" KESCOMN_DRIVER_SUFFIX
           "/" KESCOMN_SYSTEM "/" KESCOMN_BUILD_SYSTEM "/1/64bit/" KESCOMN_BUILD_KIND "/" __DATE__;
}

} // extern "C"
