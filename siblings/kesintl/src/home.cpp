// The installation's home directory and environment lookups.  The home is
// KESTOR when set, else the directory this build was configured to install
// its files in, so an installed stack works without any environment.
#include "kesintl.h"

#include <cstdlib>
#include <cstring>

#ifndef KESINTL_DEFAULT_HOME
#error "the build must define KESINTL_DEFAULT_HOME"
#endif

namespace {

// Copies value (NUL-terminated) into buf, or fails without touching buf.
int copy_value(char *buf, int buflen, const char *value)
{
    const size_t len = std::strlen(value);
    if (len >= static_cast<size_t>(buflen))
        return INTL_ENOSPACE;
    std::memcpy(buf, value, len + 1);
    return static_cast<int>(len);
}

} // namespace

extern "C" {

int intlgetenv(char *buf, int buflen, const char *name)
{
    if (!buf || !name || buflen < 1)
        return INTL_EBADARG;
    const char *value = std::getenv(name);
    if (!value) {
        buf[0] = '\0';
        return 0;
    }
    return copy_value(buf, buflen, value);
}

int intl_home(char *buf, int buflen)
{
    if (!buf || buflen < 1)
        return INTL_EBADARG;
    const char *home = std::getenv("KESTOR");
    if (!home || !*home)
        home = KESINTL_DEFAULT_HOME;
    if (!*home)
        return INTL_ENOHOME;
    return copy_value(buf, buflen, home);
}

} // extern "C"
