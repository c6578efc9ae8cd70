// Readability checks of localization files, and the plain-words diagnosis a
// user gets when a context could not load its localization.
#include <cstdarg>
#include <cstdio>

#include <unistd.h>

#include "config/paths.h"
#include "errors/assert.h"
#include "intl/locale_records.h"
#include "kesintl.h"

namespace {

constexpr size_t kLineSize = 1024;
constexpr int kLocaleNameSize = 256;

// One line of the diagnosis, through the error log.
__attribute__((format(printf, 1, 2))) void say(const char *format, ...)
{
    char line[kLineSize];
    va_list ap;
    va_start(ap, format);
    std::vsnprintf(line, sizeof line, format, ap);
    va_end(ap);
    com_perr(line);
}

// The outcome of a composer, then whether the file it named is readable;
// a path that could not be made is shown as "*".
CS_RETCODE readable(CS_RETCODE composed, CS_CHAR *buffer, CS_INT buflen)
{
    if (composed != CS_SUCCEED) {
        intl_strlcpy(buffer, "*", static_cast<size_t>(buflen));
        return composed;
    }
    return access(buffer, R_OK) == 0 ? CS_SUCCEED : KES_TRACE(CS_FAIL);
}

} // namespace

extern "C" {

CS_RETCODE com__verify_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen, CS_CHAR *filename,
                               CS_INT filenamelen, CS_CHAR *buffer, CS_INT buflen)
{
    return readable(com_path_msgfile(context, lang, langlen, filename, filenamelen, buffer, buflen), buffer,
                    buflen);
}

CS_RETCODE com__verify_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename, CS_CHAR *fileext,
                                CS_CHAR *buffer, CS_INT buflen)
{
    return readable(com_path_charfile(context, charset, filename, fileext, buffer, buflen), buffer, buflen);
}

CS_RETCODE com_intl_verify_a_msgfile(CS_CONTEXT *context, CS_LOCALE *locale, CS_CHAR *filename, CS_CHAR *buffer,
                                     CS_INT buflen)
{
    KES_NOT_NULL(filename);
    KES_NOT_NULL(buffer);
    KES_ASSERT(buflen > 0);
    if (!locale && context)
        locale = context->ctxlocale;
    const auto *messages = locale ? static_cast<const CsLocCache *>(locale->messageptr) : nullptr;
    if (!messages || !messages->langname) {
        intl_strlcpy(buffer, "*", static_cast<size_t>(buflen));
        return KES_TRACE(CS_FAIL);
    }
    return com__verify_msgfile(context, messages->langname, messages->langnamelen, filename, CS_NULLTERM, buffer,
                               buflen);
}

CS_RETCODE com_intl_verify_ctxloc(CS_CONTEXT *context)
{
    KES_NOT_NULL(context);
    say("\n\nThe context allocation routine failed when it tried to load localization files!!\n");
    say("One or more following problems may caused the failure\n\n");

    char path[COM_PATH_MAX];
    if (intl_home(path, sizeof path) < 0) {
        say("Cannot access the kestor home directory, please check environment variable KESTOR or ~kestor\n");
        return KES_TRACE(CS_FAIL);
    }
    say("Your kestor home directory is %s. ", path);
    say("Check the environment variable KESTOR if it is not the one you want!\n");

    if (readable(com_path_cfgfile(context, const_cast<CS_CHAR *>("objectid.dat"), path, sizeof path, 0), path,
                 sizeof path) != CS_SUCCEED) {
        say("Cannot access file %s\n", "objectid.dat");
        return KES_TRACE(CS_FAIL);
    }
    if (readable(com__path_locfile(context, nullptr, nullptr, const_cast<CS_CHAR *>("locales.dat"), path,
                                   sizeof path),
                 path, sizeof path) != CS_SUCCEED) {
        say("Cannot access file %s\n", "locales.dat");
        return KES_TRACE(CS_FAIL);
    }

    char name[kLocaleNameSize];
    const char *variable = "LC_ALL";
    int len = intlgetenv(name, sizeof name, variable);
    if (len == 0) {
        variable = "LANG";
        len = intlgetenv(name, sizeof name, variable);
    }
    if (len < 0) {
        say("An intl library error occurs when trying to get locale name from environment variable %s\n",
            variable);
        return KES_TRACE(CS_FAIL);
    }
    if (len > 0)
        say("Using locale name \"%s\" defined in environment variable %s\n", name, variable);
    else
        say("Using default locale name: \"%s\"\n", "default");
    // The lookup of the name in the locale table and the checks of the files
    // it names belong to the locale loader and join this diagnosis with it.
    return CS_SUCCEED;
}

} // extern "C"
