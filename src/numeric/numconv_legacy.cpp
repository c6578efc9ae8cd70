// The legacy numeric entries on raw buffers: each builds a cleared context
// and formats on the stack, calls the context-layer member and turns its
// result code into the legacy number.
#include <cstring>

#include "conv/char_scan.h"
#include "conv/legacy_fill.h"
#include "errors/assert.h"
#include "kescomn/conv_legacy.h"
#include "kescomn/numconv.h"
#include "kescomn/numeric.h"
#include "numeric/exctnume.h"
#include "numeric/numconv.h"

using namespace kes::numeric;

namespace {

// The legacy numbers of the context layer's failures; others pass unchanged.
CS_INT legacy_code(CS_RETCODE rc)
{
    switch (rc) {
    case CS_EOVERFLOW: return -1;
    case CS_EUNDERFLOW: return -2;
    case CS_ESYNTAX: return -3;
    case CS_EDOMAIN: return -6;
    case CS_EPRECISION: return -7;
    case CS_ESCALE: return -8;
    default: return rc;
    }
}

constexpr CS_INT kNumLen = sizeof(CS_NUMERIC);

CS_INT call(CS_CONV_FUNC f, CS_BYTE *src, CS_INT srctype, CS_INT srclen, CS_BYTE *dest, CS_INT desttype,
            CS_INT destlen, CS_INT precision = 0, CS_INT scale = 0)
{
    if (src == nullptr || srclen == 0)
        return 0;
    CS_CONTEXT context;
    std::memset(&context, 0, sizeof context);
    CS_DATAFMT srcfmt, destfmt;
    std::memset(&srcfmt, 0, sizeof srcfmt);
    std::memset(&destfmt, 0, sizeof destfmt);
    srcfmt.datatype = srctype;
    srcfmt.maxlength = srctype == CS_NUMERIC_TYPE ? kNumLen : srclen;
    destfmt.datatype = desttype;
    destfmt.maxlength = desttype == CS_NUMERIC_TYPE ? kNumLen : destlen;
    destfmt.precision = precision;
    destfmt.scale = scale;
    CS_INT outlen = 0;
    const CS_RETCODE rc = f(&context, &srcfmt, src, &destfmt, dest, &outlen);
    return rc == CS_SUCCEED ? outlen : legacy_code(rc);
}

// Raw bytes as the digit array of a record, unchecked.
CS_INT bytes_to_num(const CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT precision, CS_INT scale)
{
    auto *num = reinterpret_cast<CS_NUMERIC *>(dest);
    num->precision = static_cast<CS_BYTE>(precision);
    num->scale = static_cast<CS_BYTE>(scale);
    const CS_INT n = srclen < CS_MAX_NUMLEN ? srclen : CS_MAX_NUMLEN;
    std::memcpy(num->array, src, static_cast<size_t>(n));
    std::memset(num->array + n, 0, static_cast<size_t>(CS_MAX_NUMLEN - n));
    return kNumLen;
}

// The value's text through comn_numtochar with room for maxlength bytes:
// its length, or the legacy code of the failure.
CS_INT num_text(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT maxlength)
{
    return call(comn_numtochar, src, CS_NUMERIC_TYPE, srclen, dest, CS_CHAR_TYPE, maxlength);
}

constexpr CS_INT kNoLimit = 0x7FFFFFFF;

CS_SMALLINT prefix_length(const CS_BYTE *src)
{
    CS_SMALLINT n;
    std::memcpy(&n, src, sizeof n);
    return n;
}

} // namespace

extern "C" {

#define KES_LEGACY_FROM_NUM(d, type)                                                           \
    CS_INT com_numto##d(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)             \
    {                                                                                          \
        return call(comn_numto##d, src, CS_NUMERIC_TYPE, srclen, dest, type, destlen);         \
    }
KES_LEGACY_FROM_NUM(bit, CS_BIT_TYPE)
KES_LEGACY_FROM_NUM(i1, CS_TINYINT_TYPE)
KES_LEGACY_FROM_NUM(i2, CS_SMALLINT_TYPE)
KES_LEGACY_FROM_NUM(i4, CS_INT_TYPE)
KES_LEGACY_FROM_NUM(flt4, CS_REAL_TYPE)
KES_LEGACY_FROM_NUM(flt8, CS_FLOAT_TYPE)
KES_LEGACY_FROM_NUM(mny4, CS_MONEY4_TYPE)
KES_LEGACY_FROM_NUM(money, CS_MONEY_TYPE)
#undef KES_LEGACY_FROM_NUM

CS_INT com_numtochar(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    const CS_INT n = num_text(src, srclen, dest, destlen == -1 ? kNoLimit : destlen);
    if (n > 0)
        com__padchar(dest, destlen, n);
    return n;
}

// The string forms take 0, not -1, as the unbounded destlen.
CS_INT com_numtostring(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    const CS_INT n = num_text(src, srclen, dest, destlen == 0 ? kNoLimit : destlen);
    if (n > 0)
        com__padstring(dest, destlen, n);
    return n;
}

CS_INT com_numtontbstring(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    const CS_INT n = num_text(src, srclen, dest, destlen == 0 ? kNoLimit : destlen);
    if (n <= 0)
        return n;
    if (destlen > 0 && n >= destlen)
        return -1; // the NUL would land one past the buffer
    com__padntbstring(dest, n);
    return n;
}

CS_INT com_numtovarychar(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    if (src == nullptr || srclen == 0)
        return 0;
    KES_NOT_NULL(dest);
    const CS_INT n = num_text(src, srclen, dest + sizeof(CS_SMALLINT), destlen == -1 ? kNoLimit : destlen);
    const auto stored = static_cast<CS_SMALLINT>(n > 0 ? n : 1);
    std::memcpy(dest, &stored, sizeof stored);
    return n;
}

CS_INT com_numtobin(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    if (src == nullptr || srclen == 0)
        return 0;
    return com_anytobinary(reinterpret_cast<CS_NUMERIC *>(src)->array, CS_MAX_NUMLEN, dest, destlen);
}

CS_INT com_numtovarybin(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    if (src == nullptr || srclen == 0)
        return 0;
    return com_anytovarybin(reinterpret_cast<CS_NUMERIC *>(src)->array, CS_MAX_NUMLEN, dest, destlen);
}

#define KES_LEGACY_TO_NUM(s, type)                                                             \
    CS_INT com_##s##tonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision, \
                          CS_INT scale)                                                        \
    {                                                                                          \
        return call(comn_##s##tonum, src, type, srclen, dest, CS_NUMERIC_TYPE, destlen, precision, scale); \
    }
KES_LEGACY_TO_NUM(num, CS_NUMERIC_TYPE)
KES_LEGACY_TO_NUM(bit, CS_BIT_TYPE)
KES_LEGACY_TO_NUM(i1, CS_TINYINT_TYPE)
KES_LEGACY_TO_NUM(i2, CS_SMALLINT_TYPE)
KES_LEGACY_TO_NUM(i4, CS_INT_TYPE)
KES_LEGACY_TO_NUM(flt4, CS_REAL_TYPE)
KES_LEGACY_TO_NUM(flt8, CS_FLOAT_TYPE)
KES_LEGACY_TO_NUM(mny4, CS_MONEY4_TYPE)
KES_LEGACY_TO_NUM(money, CS_MONEY_TYPE)
#undef KES_LEGACY_TO_NUM

CS_INT com_bintonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision, CS_INT scale)
{
    if (src == nullptr || srclen == 0)
        return 0;
    KES_NOT_NULL(dest);
    return bytes_to_num(src, srclen, dest, precision, scale);
}

CS_INT com_varybintonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision,
                        CS_INT scale)
{
    if (src == nullptr || srclen == 0)
        return 0;
    KES_NOT_NULL(dest);
    const CS_SMALLINT n = prefix_length(src);
    if (n <= 0)
        return 0;
    return bytes_to_num(src + sizeof n, n, dest, precision, scale);
}

CS_INT com_mb_chartonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision, CS_INT scale,
                        CS_ATTRIB *chatr)
{
    if (src == nullptr || srclen == 0)
        return 0;
    KES_NOT_NULL(dest);
    if (precision < 1 || precision > kMaxPrec)
        return CS_EPRECISION;
    if (scale < 0 || scale > kMaxPrec)
        return CS_ESCALE;
    if (srclen >= kNumScratch)
        return CS_ESYNTAX;
    char buf[kNumScratch];
    CS_INT n;
    if (chatr != nullptr) {
        n = com__conv2ascii(reinterpret_cast<CS_CHAR *>(src), srclen, buf, kNumScratch, chatr);
    } else {
        n = srclen; // a negative length is the reader's to refuse
        std::memcpy(buf, src, static_cast<size_t>(n > 0 ? n : 0));
        buf[n > 0 ? n : 0] = '\0';
    }
    auto *num = reinterpret_cast<CS_NUMERIC *>(dest);
    CS_BYTE prec = static_cast<CS_BYTE>(precision), sc = static_cast<CS_BYTE>(scale);
    CS_BYTE *value = num->array;
    CS_INT len = Com__Nume_Prec_To_Len[prec];
    std::memset(num->array, 0, sizeof num->array);
    const int st = com__subchartoexctnume(buf, n, &value, &len, &prec, &sc, 0);
    num->precision = prec;
    num->scale = sc;
    switch (st) {
    case kOk: return kNumLen;
    case kOverflow:
    case kLostDigits: return -1;
    case kMalformed: return -3;
    default: com_bomb(__FILE__, __LINE__); return -1;
    }
}

CS_INT com_mb_varychartonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision,
                            CS_INT scale, CS_ATTRIB *chatr)
{
    if (src == nullptr || srclen == 0)
        return 0;
    if (prefix_length(src) == 0)
        return 0;
    // The text's length is srclen, not the prefix: kept on purpose.
    return com_mb_chartonum(src + sizeof(CS_SMALLINT), srclen, dest, destlen, precision, scale, chatr);
}

CS_INT com_setnumnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len, CS_INT precision, CS_INT scale)
{
    KES_NOT_NULL(dest);
    if (precision < 1 || precision > kMaxPrec)
        return -7;
    if (scale < 0 || scale > kMaxPrec)
        return -8;
    if (value != nullptr && len != 0)
        return com_numtonum(value, len, dest, destlen, precision, scale);
    auto *num = reinterpret_cast<CS_NUMERIC *>(dest);
    num->precision = static_cast<CS_BYTE>(precision);
    num->scale = static_cast<CS_BYTE>(scale);
    std::memset(num->array, 0, sizeof num->array);
    return kNumLen;
}

} // extern "C"
