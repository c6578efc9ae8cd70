// Environment variables of the stack, the driver configuration path and the
// name of the running program.
#include <cstring>
#include <initializer_list>

#include <libgen.h>
#include <unistd.h>

#include "config/paths.h"
#include "conv/string_conv.h"
#include "errors/assert.h"
#include "kesintl.h"

namespace {

constexpr size_t kTclCfgSize = 513;
// Longest value com_getenv hands out, with its NUL.
constexpr int kEnvValueSize = 256;
constexpr size_t kExeLinkSize = 4096;

// Set by com_set_tclcfg; empty when unset.  Process-wide and unprotected,
// like the rest of the stack's start-up settings.
char tclcfgpath[kTclCfgSize];

} // namespace

extern "C" {

CS_RETCODE com_set_tclcfg(char *path)
{
    if (!path) {
        tclcfgpath[0] = '\0';
        return CS_SUCCEED;
    }
    const size_t len = strnlen(path, kTclCfgSize - 1);
    if (len >= kTclCfgSize - 1)
        return KES_TRACE(CS_FAIL);
    std::memcpy(tclcfgpath, path, len + 1);
    return CS_SUCCEED;
}

CS_INT com_get_tclcfg(char *buf, int buflen)
{
    KES_NOT_NULL(buf);
    if (tclcfgpath[0]) {
        const size_t len = std::strlen(tclcfgpath);
        if (buflen < 1 || len >= static_cast<size_t>(buflen))
            return 0;
        std::memcpy(buf, tclcfgpath, len + 1);
        return static_cast<CS_INT>(len);
    }
    for (const char *name : {"KESXCS_TCL_CFG", "KESTOR_TCL_CFG"}) {
        const int len = intlgetenv(buf, buflen, name);
        if (len != 0)
            return len < 0 ? 0 : len;
    }
    if (buflen < 1 || com_path_cfgfile(nullptr, const_cast<CS_CHAR *>("libtcl64.cfg"), buf, buflen, 1) != CS_SUCCEED)
        return 0;
    return static_cast<CS_INT>(std::strlen(buf));
}

CS_CHAR *com_getenv(char *envvar)
{
    if (!envvar)
        return nullptr;
    char value[kEnvValueSize];
    const int len = intlgetenv(value, sizeof value, envvar);
    if (len <= 0)
        return nullptr;
    auto *copy = static_cast<CS_CHAR *>(comn_malloc(static_cast<size_t>(len) + 1));
    if (copy)
        std::memcpy(copy, value, static_cast<size_t>(len) + 1);
    return copy;
}

CS_RETCODE comn__genappname_from_exec(CS_CONTEXT *context, CS_CHAR *appname, CS_INT appnamesize,
                                      CS_INT sanitize)
{
    KES_NOT_NULL(appname);
    KES_ASSERT(appnamesize > 0);
    char exe[kExeLinkSize] = {};
    // A failing readlink leaves the buffer empty and is not told apart: the
    // name then comes out as the base name of an empty path.
    if (readlink("/proc/self/exe", exe, sizeof exe - 1) == 0)
        return KES_TRACE(CS_FAIL);
    intl_strlcpy(appname, __xpg_basename(exe), static_cast<size_t>(appnamesize));
    comn__sanitize_name(sanitize, appname, appnamesize);
    return CS_SUCCEED;
}

} // extern "C"
