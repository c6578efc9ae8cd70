// Binary sources in the context (comn_) and server (comnb_) layers: bytes
// reinterpreted as scalars, copied to binary, written as hexadecimal text.
// A CS_BINARY source reports a cut as CS_TRUNCATED, a CS_VARBINARY source as
// CS_EOVERFLOW; the generic bodies take that from the source token.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "conv/conv_common.h"
#include "conv/fill.h"
#include "conv/hex.h"
#include "conv/scalar_io.h"
#include "datetime/calendar.h"
#include "errors/assert.h"
#include "kescomn/conv_bin.h"
#include "kescomn/conv_string.h"
#include "kescomn/datetime.h"
#include "numeric/exctnume.h"

namespace {

using kes::conv::is_binary_family;
using kes::conv::is_char_family;

struct SourceBytes {
    const CS_BYTE *p;
    CS_INT len;
};

struct from_bin {
    static constexpr CS_RETCODE cut = CS_TRUNCATED;
    static CS_RETCODE move(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen, CS_INT size)
    {
        return comn_bintofixed(context, srcfmt, static_cast<CS_BYTE *>(src), destfmt, dest, destlen, size);
    }
    static bool admits(CS_INT code) { return is_binary_family(code); }
    static SourceBytes bytes(CS_DATAFMT *srcfmt, CS_VOID *src)
    {
        KES_ASSERT(srcfmt->maxlength >= 0);
        return {static_cast<const CS_BYTE *>(src), srcfmt->maxlength};
    }
};

struct from_varbin {
    static constexpr CS_RETCODE cut = CS_EOVERFLOW;
    static CS_RETCODE move(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen, CS_INT size)
    {
        return comn_varbintofixed(context, srcfmt, static_cast<CS_VARBINARY *>(src), destfmt, dest, destlen,
                                  size);
    }
    static bool admits(CS_INT code) { return code == CS_VARBINARY_TYPE; }
    static SourceBytes bytes(CS_DATAFMT *, CS_VOID *src)
    {
        const auto *vb = static_cast<const CS_VARBINARY *>(src);
        KES_ASSERT(vb->len >= 0 && vb->len <= CS_MAX_CHAR);
        return {vb->array, vb->len};
    }
};

// A fixed destination: its size and the type codes it serves.
template <CS_INT Size, int Code, int Code2 = Code> struct Fixed {
    static constexpr CS_INT size = Size;
    static bool admits(CS_INT code) { return code == Code || code == Code2; }
};
using to_i1 = Fixed<1, CS_TINYINT_TYPE>;
using to_i2 = Fixed<2, CS_SMALLINT_TYPE>;
using to_i4 = Fixed<4, CS_INT_TYPE>;
using to_i8 = Fixed<8, CS_BIGINT_TYPE, CS_LONG_TYPE>;
using to_ui2 = Fixed<2, CS_USMALLINT_TYPE>;
using to_ui4 = Fixed<4, CS_UINT_TYPE>;
using to_ui8 = Fixed<8, CS_UBIGINT_TYPE>;
using to_flt4 = Fixed<4, CS_REAL_TYPE>;
using to_flt8 = Fixed<8, CS_FLOAT_TYPE>;
using to_mny4 = Fixed<4, CS_MONEY4_TYPE>;
using to_money = Fixed<8, CS_MONEY_TYPE>;
using to_date4 = Fixed<4, CS_DATETIME4_TYPE>;
using to_datetime = Fixed<8, CS_DATETIME_TYPE>;
using to_bigdatetime = Fixed<8, CS_BIGDATETIME_TYPE>;
using to_bigtime = Fixed<8, CS_BIGTIME_TYPE>;
using to_datea = Fixed<4, CS_DATE_TYPE>;
using to_timea = Fixed<4, CS_TIME_TYPE>;

template <class S> void check_args(CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)
{
    KES_NOT_NULL(srcfmt);
    KES_NOT_NULL(src);
    KES_NOT_NULL(destfmt);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    KES_ASSERT(S::admits(srcfmt->datatype));
}

// The first size bytes of the source, or fewer.
CS_RETCODE move_fixed(SourceBytes b, CS_VOID *dest, CS_INT *destlen, CS_INT size, CS_RETCODE cut)
{
    KES_ASSERT(b.len >= 1);
    *destlen = b.len < size ? b.len : size;
    std::memcpy(dest, b.p, static_cast<size_t>(*destlen));
    if (b.len > size)
        return KES_TRACE(cut);
    if (b.len < size)
        return KES_TRACE(CS_EUNDERFLOW);
    return CS_SUCCEED;
}

template <class S, class D>
CS_RETCODE to_fixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                    CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(D::admits(destfmt->datatype));
    return S::move(context, srcfmt, src, destfmt, dest, destlen, D::size);
}

// CS_DATE and CS_TIME bytes from a binary source must be in range; the test
// reads what the mover left in the destination.
template <class D, int (*OutOfRange)(CS_INT *)>
CS_RETCODE to_checked(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen)
{
    const CS_RETCODE rc = to_fixed<from_bin, D>(context, srcfmt, src, destfmt, dest, destlen);
    CS_INT bytes = kes::conv::load<CS_INT>(dest);
    if (OutOfRange(&bytes)) {
        *destlen = 0;
        return KES_TRACE(CS_EDOMAIN);
    }
    return rc;
}

// The server layer moves the bytes first and then tests them; the big types
// answer CS_SUCCEED for any value in range, cut or not.
template <class T, int (*OutOfRange)(T *), bool kKeepMoveResult>
CS_RETCODE comnb_checked(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    const CS_RETCODE rc = comnb_anytofixed(context, src, dest);
    T bytes = kes::conv::load<T>(dest->value);
    if (OutOfRange(&bytes)) {
        dest->len = 0;
        return KES_TRACE(CS_EDOMAIN);
    }
    return kKeepMoveResult ? rc : CS_SUCCEED;
}

int datetime_out_of_range(CS_BYTE *value, CS_INT maxlen)
{
    __CONSTANT view{};
    view.value = value;
    view.len = maxlen == 4 ? 4 : 8;
    return !com__valid_datetime(&view, nullptr);
}

// The precision and scale lead the numeric's bytes; the digit array follows
// as the source gives it.
template <class S>
CS_RETCODE to_num(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                  CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(destfmt->datatype == CS_NUMERIC_TYPE || destfmt->datatype == CS_DECIMAL_TYPE);
    if (destfmt->precision < CS_MIN_PREC || destfmt->precision > CS_MAX_PREC)
        return KES_TRACE(CS_EPRECISION);
    if (destfmt->scale > CS_MAX_SCALE)
        return KES_TRACE(CS_ESCALE);
    auto *num = static_cast<CS_NUMERIC *>(dest);
    num->precision = static_cast<CS_BYTE>(destfmt->precision);
    num->scale = static_cast<CS_BYTE>(destfmt->scale);
    const CS_RETCODE rc = S::move(context, srcfmt, src, destfmt, num->array, destlen, CS_MAX_NUMLEN);
    *destlen = sizeof(CS_NUMERIC);
    return rc;
}

// Only the first byte decides.
template <class S>
CS_RETCODE to_bit(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                  CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(destfmt->datatype == CS_BIT_TYPE);
    const SourceBytes b = S::bytes(srcfmt, src);
    KES_ASSERT(b.len >= 1);
    *static_cast<CS_BIT *>(dest) = b.p[0] != 0 ? 1 : 0;
    *destlen = 1;
    return CS_SUCCEED;
}

// Two lower-case digits per byte.  Only whole pairs are written, but an odd
// capacity is counted whole in *destlen.
template <class S>
CS_RETCODE to_char(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                   CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(is_char_family(destfmt->datatype));
    const SourceBytes b = S::bytes(srcfmt, src);
    const int64_t m = 2 * int64_t{b.len}; // a source above 1 GiB has more digits than a CS_INT counts
    *destlen = m < destfmt->maxlength ? static_cast<CS_INT>(m) : destfmt->maxlength;
    if (*destlen > 0)
        kes::conv::hex::write_lower(b.p, static_cast<size_t>(*destlen / 2), static_cast<char *>(dest));
    if (*destlen < m)
        return KES_TRACE(S::cut);
    return comn__padchar(static_cast<CS_INT>(m), destfmt, dest, destlen);
}

template <class S>
CS_RETCODE to_varchar(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(destfmt->datatype == CS_VARCHAR_TYPE);
    const SourceBytes b = S::bytes(srcfmt, src);
    auto *vc = static_cast<CS_VARCHAR *>(dest);
    const int64_t m = 2 * int64_t{b.len};
    const CS_INT len = m < CS_MAX_CHAR ? static_cast<CS_INT>(m) : CS_MAX_CHAR;
    kes::conv::hex::write_lower(b.p, static_cast<size_t>(len / 2), vc->str);
    vc->len = static_cast<CS_SMALLINT>(len);
    *destlen = sizeof(CS_VARCHAR);
    return len < m ? KES_TRACE(S::cut) : CS_SUCCEED;
}

template <class S>
CS_RETCODE to_bin(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                  CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(is_binary_family(destfmt->datatype));
    const SourceBytes b = S::bytes(srcfmt, src);
    const CS_INT maxlength = destfmt->maxlength;
    *destlen = b.len < maxlength ? b.len : maxlength;
    if (*destlen > 0)
        std::memcpy(dest, b.p, static_cast<size_t>(*destlen));
    if (maxlength < b.len)
        return KES_TRACE(S::cut);
    return comn__padbin(b.len, destfmt, dest, destlen);
}

// A CS_VARBINARY takes at most 256 bytes; a CS_VARBINARY source, which cannot
// hold more, must hold at least one.
template <class S>
CS_RETCODE to_varbin(CS_CONTEXT *, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                     CS_INT *destlen)
{
    check_args<S>(srcfmt, src, destfmt, dest, destlen);
    KES_ASSERT(destfmt->datatype == CS_VARBINARY_TYPE);
    const SourceBytes b = S::bytes(srcfmt, src);
    if constexpr (std::is_same_v<S, from_varbin>)
        KES_ASSERT(b.len >= 1);
    auto *vb = static_cast<CS_VARBINARY *>(dest);
    const CS_INT len = b.len > CS_MAX_CHAR - 1 ? CS_MAX_CHAR : b.len;
    std::memmove(vb->array, b.p, static_cast<size_t>(len));
    vb->len = static_cast<CS_SMALLINT>(len);
    *destlen = sizeof(CS_VARBINARY);
    return len < b.len ? KES_TRACE(CS_TRUNCATED) : CS_SUCCEED;
}

} // namespace

extern "C" {

CS_RETCODE comn_bintofixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_BYTE *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen, CS_INT size)
{
    KES_NOT_NULL(srcfmt);
    KES_NOT_NULL(src);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    return move_fixed({src, srcfmt->maxlength}, dest, destlen, size, CS_TRUNCATED);
}

CS_RETCODE comn_varbintofixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VARBINARY *src, CS_DATAFMT *destfmt,
                              CS_VOID *dest, CS_INT *destlen, CS_INT size)
{
    KES_NOT_NULL(src);
    KES_NOT_NULL(dest);
    KES_NOT_NULL(destlen);
    return move_fixed({src->array, src->len}, dest, destlen, size, CS_EOVERFLOW);
}

CS_RETCODE comn_bintodatea(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen)
{
    return to_checked<to_datea, com__datea_check_range>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_bintotimea(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen)
{
    return to_checked<to_timea, com__timea_check_range>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comnb_bintodate(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    const CS_RETCODE rc = comnb_anytofixed(context, src, dest);
    if (datetime_out_of_range(dest->value, dest->maxlen)) {
        dest->len = 0;
        return KES_TRACE(CS_EDOMAIN);
    }
    return rc;
}

CS_RETCODE comnb_bintodatea(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_checked<CS_DATE, com__datea_check_range, true>(context, src, dest);
}

CS_RETCODE comnb_bintotimea(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_checked<CS_TIME, com__timea_check_range, true>(context, src, dest);
}

CS_RETCODE comnb_bintobigdatetime(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_checked<CS_BIGDATETIME, com__bigdatetime_check_range, false>(context, src, dest);
}

CS_RETCODE comnb_bintobigtime(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_checked<CS_BIGTIME, com__bigtime_check_range, false>(context, src, dest);
}

// The digits must fit the destination's precision as they will stand after
// the fill, so the test runs on a filled scratch copy first.
CS_RETCODE comnb_bintonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    if (src->len < 1 || src->value[0] > 1)
        return KES_TRACE(CS_EDOMAIN);
    CS_BYTE scratch[CS_MAX_NUMLEN];
    __CONSTANT digits{};
    digits.value = scratch;
    digits.maxlen = dest->maxlen < CS_MAX_NUMLEN ? dest->maxlen : CS_MAX_NUMLEN;
    digits.len = src->len < digits.maxlen ? src->len : digits.maxlen;
    digits.prec = dest->prec;
    digits.scale = dest->scale;
    std::memcpy(scratch, src->value, static_cast<size_t>(digits.len));
    (void)comnb__padbin(context, &digits);
    if (com__exctnume_checkprecision(&digits) != 0)
        return KES_TRACE(CS_EOVERFLOW);
    dest->len = src->len < dest->maxlen ? src->len : dest->maxlen;
    std::memcpy(dest->value, src->value, static_cast<size_t>(dest->len));
    if (dest->len < src->len)
        return KES_TRACE(CS_TRUNCATED);
    return comnb__padbin(context, dest);
}

// Any byte but 0 makes 1: all bytes count here.
CS_RETCODE comnb_bintobit(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    CS_BIT bit = 0;
    for (CS_INT i = 0; i < src->len; i++)
        bit |= src->value[i] != 0;
    dest->value[0] = bit;
    dest->len = 1;
    return CS_SUCCEED;
}

} // extern "C"

// ---- the members ---------------------------------------------------------------

#define KES_BIN_SOURCES(X) X(bin) X(varbin)
#define KES_FIXED_DESTS(X, s)                                                                     \
    X(s, i1) X(s, i2) X(s, i4) X(s, i8) X(s, ui2) X(s, ui4) X(s, ui8) X(s, flt4) X(s, flt8)       \
    X(s, mny4) X(s, money) X(s, date4) X(s, datetime) X(s, bigdatetime) X(s, bigtime)

#define KES_MEMBER(name, body)                                                                    \
    extern "C" CS_RETCODE name(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,             \
                               CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)               \
    {                                                                                             \
        return body(context, srcfmt, src, destfmt, dest, destlen);                                \
    }
#define KES_DEFINE_FIXED(s, d) KES_MEMBER(comn_##s##to##d, (to_fixed<from_##s, to_##d>))
#define KES_DEFINE_ROW(s)                                                                         \
    KES_FIXED_DESTS(KES_DEFINE_FIXED, s)                                                          \
    KES_MEMBER(comn_##s##tonum, to_num<from_##s>)                                                 \
    KES_MEMBER(comn_##s##tobit, to_bit<from_##s>)                                                 \
    KES_MEMBER(comn_##s##tochar, to_char<from_##s>)                                               \
    KES_MEMBER(comn_##s##tovarchar, to_varchar<from_##s>)                                         \
    KES_MEMBER(comn_##s##tobin, to_bin<from_##s>)                                                 \
    KES_MEMBER(comn_##s##tovarbin, to_varbin<from_##s>)

KES_BIN_SOURCES(KES_DEFINE_ROW)
// Only the binary source tests the date and time bytes for their range.
KES_DEFINE_FIXED(varbin, datea)
KES_DEFINE_FIXED(varbin, timea)
