// Text to text in the context (comn_) and server (comnb_) layers, the
// character-safe cut, quote doubling, name case and the server's byte movers.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "conv/fill.h"
#include "conv/scalar_io.h"
#include "conv/string_conv.h"
#include "conv/conv_common.h"
#include "errors/assert.h"
#include "intl/charattr.h"
#include "intl/locale_records.h"

// The character set converter comes with the locale loader.  Until it is
// linked in, text between different sets cannot be translated.
extern "C" KES_API __attribute__((weak)) CS_RETCODE
comn_charset_convert(CS_CONTEXT *context, CS_INT type, CS_DATAFMT *srcfmt, CS_VOID *src,
                     CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *resultlen);

namespace {

constexpr CS_INT kVarcharCap = CS_MAX_CHAR;                  // 256
constexpr CS_INT kVarcharSize = sizeof(CS_VARCHAR);          // 258, the reported length
constexpr CS_INT kLcCtype = 2;                               // locale category of the converter
constexpr CS_INT kQuote = '\'';
constexpr CS_BYTE kServerFlt4 = 59;
constexpr CS_BYTE kServerFlt8 = 62;

using kes::conv::is_char_family;

CS_INT clamp0(CS_INT n) { return n > 0 ? n : 0; }

// ---- locales ---------------------------------------------------------------

CS_LOCALE *locale_of(CS_CONTEXT *context, const CS_DATAFMT *fmt)
{
    return fmt->locale != nullptr ? fmt->locale : context->ctxlocale;
}

const CsLocCache *ctype_of(const CS_LOCALE *locale)
{
    return locale != nullptr ? static_cast<const CsLocCache *>(locale->ctypeptr) : nullptr;
}

const CsCharDesc *chardesc_of(const CsLocCache *cache)
{
    return cache != nullptr ? cache->locchardesc : nullptr;
}

// comn_chartochar also asks whether the loaded descriptions differ; the other
// members translate as soon as the caches differ.
enum class SetTest { cache, cache_and_description };

bool sets_differ(CS_CONTEXT *context, const CS_DATAFMT *srcfmt, const CS_DATAFMT *destfmt, SetTest test)
{
    const CsLocCache *from = ctype_of(locale_of(context, srcfmt));
    const CsLocCache *to = ctype_of(locale_of(context, destfmt));
    if (from == to)
        return false;
    return test == SetTest::cache || chardesc_of(from) != chardesc_of(to);
}

CS_RETCODE translate(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                     CS_VOID *dest, CS_INT *destlen)
{
    if (comn_charset_convert == nullptr)
        return KES_TRACE(CS_ENOXLT);
    return comn_charset_convert(context, kLcCtype, srcfmt, src, destfmt, dest, destlen);
}

// ---- sources -----------------------------------------------------------------

enum class Source { text, varchar };

struct Text {
    CS_BYTE *bytes;
    CS_INT len;
};

// A CS_VARCHAR source: len is read as unsigned, 0 is a broken caller, and no
// more than the 256 bytes of str exist.
Text varchar_text(CS_VOID *src)
{
    auto *vc = static_cast<CS_VARCHAR *>(src);
    const CS_INT len = static_cast<CS_USMALLINT>(vc->len);
    KES_ASSERT(len != 0);
    return {reinterpret_cast<CS_BYTE *>(vc->str), std::min(len, kVarcharCap)};
}

template <Source S> void assert_conv_args(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(S == Source::text ? is_char_family(srcfmt->datatype) : srcfmt->datatype == CS_VARCHAR_TYPE);
}

// ---- comn_ text destinations -------------------------------------------------

// Step 5 of every text destination: the fill, its overflow read as a cut.
CS_RETCODE finish_text(CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen, bool truncated)
{
    const CS_RETCODE rc = comn__padchar(*destlen, destfmt, dest, destlen);
    if (rc == CS_EOVERFLOW || (rc == CS_SUCCEED && truncated))
        return KES_TRACE(CS_TRUNCATED);
    return rc;
}

template <Source S> CS_RETCODE text_to_text(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                            CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    assert_conv_args<S>(context, srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(is_char_family(destfmt->datatype));
    const Text text = S == Source::text ? Text{static_cast<CS_BYTE *>(src), clamp0(srcfmt->maxlength)}
                                        : varchar_text(src);
    const CS_INT maxlength = destfmt->maxlength;
    const CS_INT format = destfmt->format;
    const bool escape = S == Source::text && (format & CS_FMT_SAFESTR);
    auto *out = static_cast<CS_BYTE *>(dest);

    *destlen = clamp0(std::min(text.len, maxlength));
    bool truncated = false;
    CS_RETCODE rc;
    if (*destlen > 0 &&
        sets_differ(context, srcfmt, destfmt, S == Source::text ? SetTest::cache_and_description : SetTest::cache)) {
        rc = translate(context, srcfmt, src, destfmt, dest, destlen);
        if (S == Source::text && rc == CS_TRUNCATED)
            truncated = true;
        else if (rc != CS_SUCCEED)
            return rc;
        // Quote doubling reads the original text and writes over the
        // translation, in the destination's set.
        if (escape && (rc = comn__escchar(static_cast<CS_CHAR *>(src), srcfmt, static_cast<CS_CHAR *>(dest),
                                          destfmt, destlen, com_intl_charattr(context, destfmt), kQuote)) !=
                          CS_SUCCEED)
            return rc;
    } else {
        truncated = *destlen < text.len;
        CS_ATTRIB *attrib = com_intl_charattr(context, srcfmt);
        if (escape) {
            rc = comn__escchar(static_cast<CS_CHAR *>(src), srcfmt, static_cast<CS_CHAR *>(dest), destfmt,
                               destlen, attrib, kQuote);
            if (rc != CS_SUCCEED)
                return rc;
        } else {
            if (*destlen > 0 && attrib->cs_maxcharlen > 1)
                *destlen = comnb_truncate_chars(attrib, text.bytes, text.len, maxlength);
            if (text.bytes != out && *destlen > 0) // equal when a text is filled in place
                std::memmove(out, text.bytes, static_cast<size_t>(*destlen));
        }
    }

    // An exact fit leaves no room for the terminator: it replaces the last
    // byte and stays counted.
    if (S == Source::text && *destlen == maxlength && (format & CS_FMT_NULLTERM)) {
        if (*destlen >= 1)
            out[*destlen - 1] = 0;
        return KES_TRACE(CS_TRUNCATED);
    }
    return finish_text(destfmt, dest, destlen, truncated);
}

// ---- comn_ CS_VARCHAR destinations --------------------------------------------

template <Source S> CS_RETCODE text_to_varchar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                               CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    assert_conv_args<S>(context, srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(destfmt->datatype == CS_VARCHAR_TYPE);
    // A text source of more than 255 bytes, or of a negative length, stands
    // for the whole capacity.
    Text text;
    if constexpr (S == Source::text) {
        const CS_INT len = srcfmt->maxlength;
        text = {static_cast<CS_BYTE *>(src), len};
        *destlen = (len > 255 || len < 0) ? kVarcharCap : len;
    } else {
        text = varchar_text(src);
        *destlen = text.len;
    }
    auto *vc = static_cast<CS_VARCHAR *>(dest);
    bool truncated = false;
    if (*destlen > 0 && sets_differ(context, srcfmt, destfmt, SetTest::cache)) {
        const CS_RETCODE rc = translate(context, srcfmt, src, destfmt, dest, destlen);
        if (rc != CS_SUCCEED)
            return rc;
    } else {
        truncated = *destlen < text.len;
        CS_ATTRIB *attrib = com_intl_charattr(context, srcfmt);
        if (*destlen > 0 && attrib->cs_maxcharlen > 1)
            *destlen = comnb_truncate_chars(attrib, text.bytes, text.len < 0 ? kVarcharCap : text.len, kVarcharCap);
        if (*destlen > 0)
            std::memmove(vc->str, text.bytes, static_cast<size_t>(*destlen));
    }
    vc->len = static_cast<CS_SMALLINT>(*destlen);
    *destlen = kVarcharSize;
    return truncated ? KES_TRACE(CS_TRUNCATED) : CS_SUCCEED;
}

// ---- comnb_ layer ----------------------------------------------------------------

enum class ServerFill { text, none };

template <ServerFill F> CS_RETCODE server_text(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    CS_INT len = clamp0(std::min(src->len, dest->maxlen));
    // Right-justified blank fill writes its blanks in front of the text, so
    // the text goes to the end of the capacity; with a NUL fill or a
    // terminator the fill refuses the format and the text stays in front.
    const CS_INT format = context->format;
    const bool at_end = F == ServerFill::text && (format & CS_FMT_JUSTIFY_RT) && (format & CS_FMT_PADBLANK) &&
                        !(format & (CS_FMT_PADNULL | CS_FMT_NULLTERM));
    if (len > 0) {
        KES_ASSERT(src->locale == dest->locale); // the server never translates here
        const CHAR_ATTRIB *attrib = context->char_attrib;
        if (attrib != nullptr && attrib->cs_maxcharlen > 1)
            len = comnb_truncate_chars(context->char_attrib, src->value, src->len, dest->maxlen);
        std::memmove(dest->value + (at_end ? dest->maxlen - len : 0), src->value, static_cast<size_t>(len));
    }
    dest->len = len;
    if (len < src->len)
        return KES_TRACE(CS_TRUNCATED);
    if constexpr (F == ServerFill::none) {
        return CS_SUCCEED;
    } else {
        const CS_RETCODE rc = comnb__padchar(context, dest);
        return rc == CS_EOVERFLOW ? KES_TRACE(CS_TRUNCATED) : rc;
    }
}

// Steps 1 and 2 of the byte movers; false when the bytes were cut.
bool server_copy(__CONSTANT *src, __CONSTANT *dest)
{
    const CS_INT len = clamp0(std::min(src->len, dest->maxlen));
    if (len > 0)
        std::memmove(dest->value, src->value, static_cast<size_t>(len));
    dest->len = len;
    return len >= src->len;
}

template <class T> bool finite_at(const __CONSTANT *dest)
{
    return dest->maxlen < static_cast<CS_INT>(sizeof(T)) || std::isfinite(kes::conv::load<T>(dest->value));
}

} // namespace

extern "C" {

CS_INT comnb_truncate_chars(CHAR_ATTRIB *attrib, CS_BYTE *str, CS_INT len, CS_INT maxlen)
{
    if (len < maxlen)
        return len;
    if (maxlen <= 0)
        return 0;
    KES_NOT_NULL(str);
    return kes::intl::walk_chars(kes::intl::resolve(attrib), str, str + len, maxlen).bytes;
}

CS_RETCODE comn__escchar(CS_CHAR *src, CS_DATAFMT *srcfmt, CS_CHAR *dest, CS_DATAFMT *destfmt, CS_INT *destlen,
                         CS_ATTRIB *ca, CS_INT escape)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(srcfmt);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(destlen);
    const CS_ATTRIB &attrib = kes::intl::resolve(ca);
    const auto *in = reinterpret_cast<const CS_BYTE *>(src);
    const CS_BYTE *end = in + clamp0(srcfmt->maxlength);
    const CS_INT cap = destfmt->maxlength;
    const bool stop_at_nul = destfmt->format & CS_FMT_NULLTERM;

    // Runs of source bytes go out with one copy each; an escape character
    // ends a run and also starts the next, which writes it the second time.
    CS_INT out = 0;
    const CS_BYTE *run = in;
    const auto flush = [&](const CS_BYTE *upto) {
        const CS_INT n = static_cast<CS_INT>(upto - run);
        std::memmove(dest + out, run, static_cast<size_t>(n));
        out += n;
        run = upto;
    };
    CS_RETCODE rc = CS_SUCCEED;
    CS_INT size = 0;
    const CS_BYTE *p = in;
    while (p < end) {
        if (stop_at_nul && *p == 0)
            break;
        const CS_INT len = std::min<CS_INT>(kes::intl::char_len(attrib, p, end), static_cast<CS_INT>(end - p));
        const bool doubled = kes::intl::to_ascii(attrib, p, len) == escape;
        const CS_INT need = doubled ? 2 * len : len;
        if (need > cap - size) {
            rc = KES_TRACE(CS_TRUNCATED);
            break;
        }
        size += need;
        if (doubled) {
            flush(p + len);
            run = p;
        }
        p += len;
    }
    flush(p);
    *destlen = out;
    return rc;
}

void comn__sanitize_name(CS_INT sanitize, CS_CHAR *sname, CS_INT namesize)
{
    if (sanitize != 1 && sanitize != 2)
        return;
    KES_NOT_NULL(sname);
    for (CS_INT i = 0; i <= namesize && sname[i] != 0; ++i) {
        const char c = sname[i];
        if (sanitize == 1 && c >= 'A' && c <= 'Z')
            sname[i] = static_cast<CS_CHAR>(c + ('a' - 'A'));
        else if (sanitize == 2 && c >= 'a' && c <= 'z')
            sname[i] = static_cast<CS_CHAR>(c - ('a' - 'A'));
    }
}

CS_RETCODE comn_chartochar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen)
{
    return text_to_text<Source::text>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_varchartochar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                              CS_VOID *dest, CS_INT *destlen)
{
    return text_to_text<Source::varchar>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_chartovarchar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                              CS_VOID *dest, CS_INT *destlen)
{
    return text_to_varchar<Source::text>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_varchartovarchar(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                                 CS_VOID *dest, CS_INT *destlen)
{
    return text_to_varchar<Source::varchar>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comnb_chartochar(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return server_text<ServerFill::text>(context, src, dest);
}

CS_RETCODE comnb_varchartochar(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return server_text<ServerFill::text>(context, src, dest);
}

CS_RETCODE comnb_chartovarchar(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return server_text<ServerFill::none>(context, src, dest);
}

CS_RETCODE comnb_varchartovarchar(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return server_text<ServerFill::none>(context, src, dest);
}

CS_RETCODE comnb_anytofixed(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (!server_copy(src, dest))
        return KES_TRACE(CS_TRUNCATED);
    const CS_RETCODE rc = comnb__padbin(context, dest);
    // Bytes that land in a float column must form a number.
    if ((dest->type == kServerFlt4 && !finite_at<CS_REAL>(dest)) ||
        (dest->type == kServerFlt8 && !finite_at<CS_FLOAT>(dest)))
        return KES_TRACE(CS_EDOMAIN);
    return rc;
}

CS_RETCODE comnb_anytovar(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return server_copy(src, dest) ? CS_SUCCEED : KES_TRACE(CS_TRUNCATED);
}

} // extern "C"
