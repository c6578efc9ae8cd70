// Paths below the home directory.  Each composer starts from intl_home and
// adds one "/"-separated part at a time, checking before each that the
// whole still fits; a path that does not fit is never left half made.
#include <cstring>
#include <string_view>

#include "config/paths.h"
#include "errors/assert.h"
#include "kesintl.h"

namespace {

// Room for the value of KESTOR_XCS, with its NUL.
constexpr int kXcsValueSize = 512;

class PathBuilder {
public:
    PathBuilder(CS_CHAR *path, CS_INT size) : path_(path), size_(static_cast<size_t>(size))
    {
        KES_NOT_NULL(path);
        KES_ASSERT(size > 0);
    }

    // Starts with the home directory; CS_EINTLFILE when it cannot be had.
    CS_RETCODE home(CS_CONTEXT *context)
    {
        const int len = intl_home(path_, static_cast<int>(size_));
        if (len < 0) {
            if (context)
                context->ctxintlerr = len;
            path_[0] = '\0';
            return KES_TRACE(CS_EINTLFILE);
        }
        KES_ASSERT(static_cast<size_t>(len) < size_);
        len_ = static_cast<size_t>(len);
        return CS_SUCCEED;
    }

    // Appends "/" and part, or separator-less text such as ".ext".
    PathBuilder &part(std::string_view text, bool slash = true)
    {
        const size_t need = len_ + (slash ? 1 : 0) + text.size();
        if (!fits_ || need >= size_) {
            fits_ = false;
            return *this;
        }
        if (slash)
            path_[len_++] = '/';
        std::memcpy(path_ + len_, text.data(), text.size());
        len_ = need;
        path_[len_] = '\0';
        return *this;
    }

    PathBuilder &part_if(const CS_CHAR *text, bool slash = true) { return text ? part(text, slash) : *this; }

    // The extra level of KESTOR_XCS when it has a value; one too long for
    // its buffer cannot fit any path either.
    PathBuilder &xcs_level()
    {
        char value[kXcsValueSize];
        const int len = intlgetenv(value, sizeof value, "KESTOR_XCS");
        if (len < 0)
            fits_ = false;
        else if (len > 0)
            part(std::string_view(value, static_cast<size_t>(len)));
        return *this;
    }

    CS_RETCODE finish()
    {
        if (fits_)
            return CS_SUCCEED;
        path_[0] = '\0';
        return KES_TRACE(CS_FAIL);
    }

private:
    CS_CHAR *path_;
    size_t size_;
    size_t len_ = 0;
    bool fits_ = true;
};

struct LocDataKind {
    CS_INT type;
    const char *directory;
    const char *extension;
};

constexpr LocDataKind kLocDataKinds[] = {
    {COM_LOCDATA_MONEY, "money", "mon"},
    {COM_LOCDATA_NUMERIC, "numeric", "num"},
    {COM_LOCDATA_DATE, "datetime", "dt"},
};

} // namespace

extern "C" {

CS_RETCODE com_path_anyfile(CS_CHAR *pathname, CS_INT pathsize, CS_CHAR *directory, CS_CHAR *filename,
                            CS_BOOL xcs)
{
    PathBuilder path(pathname, pathsize);
    std::memset(pathname, 0, static_cast<size_t>(pathsize));
    if (CS_RETCODE rc = path.home(nullptr); rc != CS_SUCCEED)
        return rc;
    if (xcs == 1)
        path.xcs_level();
    return path.part_if(directory).part_if(filename).finish();
}

CS_RETCODE com_path_ifile(CS_CONTEXT *context, CS_CHAR *pathname, CS_INT pathsize)
{
    PathBuilder path(pathname, pathsize);
    const int len = intlgetenv(pathname, pathsize, "KESXCS_IFILE");
    if (len > 0)
        return CS_SUCCEED;
    if (len < 0) {
        pathname[0] = '\0';
        return KES_TRACE(CS_FAIL);
    }
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    return path.part("interfaces").finish();
}

CS_RETCODE com_path_cfgfile(CS_CONTEXT *context, CS_CHAR *cfgfile, CS_CHAR *pathname, CS_INT pathsize,
                            CS_BOOL xcs)
{
    KES_NOT_NULL(cfgfile);
    PathBuilder path(pathname, pathsize);
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    if (xcs != 0)
        path.xcs_level();
    return path.part("config").part(cfgfile).finish();
}

CS_RETCODE com__path_locfile(CS_CONTEXT *context, CS_CHAR *lang, CS_CHAR *charset, CS_CHAR *locfile,
                             CS_CHAR *pathname, CS_INT pathsize)
{
    PathBuilder path(pathname, pathsize);
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    path.part("locales").part_if(lang);
    if (lang)
        path.part_if(charset);
    return path.part_if(locfile).finish();
}

CS_RETCODE com_path_msgfile(CS_CONTEXT *context, CS_CHAR *lang, CS_INT langlen, CS_CHAR *msgfile,
                            CS_INT msgfilelen, CS_CHAR *pathname, CS_INT pathsize)
{
    KES_NOT_NULL(lang);
    KES_NOT_NULL(msgfile);
    PathBuilder path(pathname, pathsize);
    std::memset(pathname, 0, static_cast<size_t>(pathsize));
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    const size_t filelen =
        msgfilelen < 0 ? std::strlen(msgfile) : strnlen(msgfile, static_cast<size_t>(msgfilelen));
    return path.part("locales").part("message").part(lang).part(std::string_view(msgfile, filelen)).finish();
}

CS_RETCODE com_path_charfile(CS_CONTEXT *context, CS_CHAR *charset, CS_CHAR *filename, CS_CHAR *fileext,
                             CS_CHAR *pathname, CS_INT pathsize)
{
    PathBuilder path(pathname, pathsize);
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    path.part("charsets").part_if(charset);
    if (filename) {
        path.part(filename);
        if (fileext)
            path.part(".", false).part(fileext, false);
    }
    return path.finish();
}

CS_RETCODE comn__path_locdata(CS_CONTEXT *context, CS_INT type, CS_CHAR *filename, CS_CHAR *pathname,
                              CS_INT pathsize)
{
    KES_NOT_NULL(filename);
    const LocDataKind *kind = nullptr;
    for (const LocDataKind &k : kLocDataKinds)
        if (k.type == type)
            kind = &k;
    KES_ASSERT(kind != nullptr);
    PathBuilder path(pathname, pathsize);
    if (CS_RETCODE rc = path.home(context); rc != CS_SUCCEED)
        return rc;
    return path.part("locales").part(kind->directory).part(filename).part(".", false).part(kind->extension, false)
        .finish();
}

} // extern "C"
