// Fill routines: terminators, NUL and blank fills, and the room test.
#include "conv/fill.h"

#include <cstring>

#include "errors/assert.h"

namespace {

constexpr CS_INT kNulTerm = CS_FMT_NULLTERM;
constexpr CS_INT kPadNull = CS_FMT_PADNULL;
constexpr CS_INT kPadBlank = CS_FMT_PADBLANK;
constexpr CS_INT kJustifyRight = CS_FMT_JUSTIFY_RT;

// Text fill in units of `unit` bytes (1 for bytes, 2 for 16-bit code units).
CS_RETCODE pad_text(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen, CS_INT unit)
{
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(destlen);
    const CS_INT format = destfmt->format;
    const CS_INT maxlength = destfmt->maxlength;
    auto *base = static_cast<CS_BYTE *>(dest);

    const bool nul_term = (format & kNulTerm) != 0;
    if (maxlength < srclen || (nul_term && maxlength - srclen < unit)) {
        if (nul_term && maxlength >= unit)
            std::memset(base + maxlength - unit, 0, static_cast<size_t>(unit));
        return KES_TRACE(CS_EOVERFLOW);
    }
    CS_BYTE *p = base + *destlen;
    CS_INT rest = maxlength - *destlen;
    if (format & kPadNull) {
        if (format & kPadBlank)
            return KES_TRACE(CS_EFORMAT);
        if (rest > 0)
            std::memset(p, 0, static_cast<size_t>(rest));
        *destlen = maxlength;
    } else if (format & kPadBlank) {
        if (rest > 0) {
            if (unit == 1) {
                std::memset(p, ' ', static_cast<size_t>(rest));
            } else {
                const CS_UNICHAR blank = ' ';
                for (CS_INT i = 0; i + unit <= rest; i += unit)
                    std::memcpy(p + i, &blank, sizeof blank);
            }
            if (nul_term)
                std::memset(base + maxlength - unit, 0, static_cast<size_t>(unit));
        }
        *destlen = maxlength;
    } else if (nul_term) {
        std::memset(p, 0, static_cast<size_t>(unit));
        *destlen += unit;
    }
    return CS_SUCCEED;
}

} // namespace

extern "C" {

CS_RETCODE comn__padchar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    return pad_text(srclen, destfmt, dest, destlen, 1);
}

CS_RETCODE comn__padunichar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    return pad_text(srclen, destfmt, dest, destlen, 2);
}

CS_RETCODE comn__padbin(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(destlen);
    if ((destfmt->format & kPadNull) && destfmt->maxlength > srclen) {
        std::memset(static_cast<CS_BYTE *>(dest) + srclen, 0,
                    static_cast<size_t>(destfmt->maxlength - srclen));
        *destlen = destfmt->maxlength;
    }
    return CS_SUCCEED;
}

CS_RETCODE comnb__padchar(CAST_CONTEXT *context, __CONSTANT *dest)
{
    const CS_INT format = context->format;
    const bool nul_term = (format & kNulTerm) != 0;
    if (dest->maxlen < dest->len || (nul_term && dest->maxlen == dest->len))
        return KES_TRACE(CS_EOVERFLOW);
    CS_BYTE *p = dest->value + dest->len;
    CS_INT rest = dest->maxlen - dest->len;
    if (format & kPadNull) {
        if (format & kPadBlank)
            return KES_TRACE(CS_EFORMAT);
        std::memset(p, 0, static_cast<size_t>(rest));
        dest->len = dest->maxlen;
    } else if (format & kPadBlank) {
        if (format & kJustifyRight) {
            if (nul_term)
                return KES_TRACE(CS_EFORMAT);
            // The caller has already put the text at the end of the capacity.
            std::memset(dest->value, ' ', static_cast<size_t>(rest));
        } else {
            std::memset(p, ' ', static_cast<size_t>(rest));
            if (nul_term && rest > 0)
                dest->value[dest->maxlen - 1] = 0;
        }
        dest->len = dest->maxlen;
    } else if (nul_term) {
        *p = 0;
        dest->len += 1;
    }
    return CS_SUCCEED;
}

CS_RETCODE comnb__padbin(CAST_CONTEXT *context, __CONSTANT *dest)
{
    CS_INT rest = dest->maxlen - dest->len;
    if (rest > 0 && (context->format & (kPadNull | kPadBlank))) {
        std::memset(dest->value + dest->len, (context->format & kPadNull) ? 0 : ' ',
                    static_cast<size_t>(rest));
        dest->len = dest->maxlen;
    }
    return CS_SUCCEED;
}

CS_RETCODE comn_fixedtobin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                           CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen, CS_INT size)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    const CS_INT maxlength = destfmt->maxlength;
    *destlen = size < maxlength ? size : maxlength;
    if (*destlen > 0)
        std::memcpy(dest, src, static_cast<size_t>(*destlen));
    if (maxlength < size)
        return KES_TRACE(CS_TRUNCATED);
    return comn__padbin(size, destfmt, dest, destlen);
}

CS_RETCODE comn_fixedtovarbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                              CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen, CS_INT size)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    auto *vb = static_cast<CS_VARBINARY *>(dest);
    CS_INT len = (size < 0 || size > 255) ? 256 : size;
    vb->len = static_cast<CS_SMALLINT>(len);
    if (size > 0)
        std::memcpy(vb->array, src, static_cast<size_t>(len < size ? len : size));
    *destlen = sizeof(CS_VARBINARY);
    return len < size ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}

} // extern "C"
