// Integers into exact numerics: the four kernels on raw value bytes, and the
// conversions of the integer rows in the context (comn_) and server (comnb_)
// layers, stamped out from one generic body per layer.
#include <cstring>
#include <type_traits>

#include "conv/scalar_io.h"
#include "conv/conv_common.h"
#include "errors/assert.h"
#include "kescomn/numeric.h"
#include "numeric/exctnume.h"

using namespace kes::numeric;

namespace {

template <class T> int int_to_exctnume(T value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    if (*precision == 0 || *precision > kMaxPrec) {
        KES_ASSERT(destlen >= 2 && destlen <= kMaxLen + 3);
        *precision = Com__Nume_Len_To_Prec[destlen - 2];
        *scale = 0;
    }
    if (destlen > 0)
        std::memset(dest, 0, static_cast<size_t>(destlen));
    using U = std::make_unsigned_t<T>;
    const bool neg = value < 0;
    // Two's complement negation in the unsigned type is exact for the minimum too.
    U mag = neg ? static_cast<U>(U{0} - static_cast<U>(value)) : static_cast<U>(value);
    for (int i = destlen - 1; i >= 1 && mag != 0; --i) {
        dest[i] = static_cast<CS_BYTE>(mag);
        mag = static_cast<U>(mag >> 8);
    }
    if (mag != 0)
        return kOverflow;

    __CONSTANT c = value_view(dest, destlen, *precision, *scale);
    if (*scale != 0) {
        const int st = com__exctnume_scale(&c, nullptr, *scale, 0);
        if (st != kOk)
            return st;
    }
    if (neg)
        dest[0] = 1;
    return com__exctnume_checkprecision(&c) ? kOverflow : kOk;
}

// ---- source tokens ------------------------------------------------------

// Kernel is the C-linkage kernel of the source's widened type; Sentinel says
// whether the destination may ask for the source's precision or scale.
template <class T, class Wide, int Code, bool Sentinel = false, int AltCode = -1> struct Source {
    using type = T;
    using wide = Wide;
    static constexpr int code = Code;
    static constexpr bool sentinel = Sentinel;
    static constexpr bool admits(CS_INT c) { return c == Code || c == AltCode; }
    static constexpr bool is_bit = false;
};
struct src_i1 : Source<CS_TINYINT, CS_INT, CS_TINYINT_TYPE> {};
struct src_i2 : Source<CS_SMALLINT, CS_INT, CS_SMALLINT_TYPE> {};
struct src_i4 : Source<CS_INT, CS_INT, CS_INT_TYPE> {};
struct src_i8 : Source<CS_BIGINT, CS_BIGINT, CS_BIGINT_TYPE, true, CS_LONG_TYPE> {};
struct src_ui2 : Source<CS_USMALLINT, CS_UINT, CS_USMALLINT_TYPE> {};
struct src_ui4 : Source<CS_UINT, CS_UINT, CS_UINT_TYPE> {};
struct src_ui8 : Source<CS_UBIGINT, CS_UBIGINT, CS_UBIGINT_TYPE, true> {};
struct src_bit : Source<CS_BIT, CS_INT, CS_BIT_TYPE> {
    static constexpr bool is_bit = true;
};

template <class W> int kernel(W v, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    if constexpr (std::is_same_v<W, CS_INT>)
        return com__longtoexctnume(v, dest, destlen, precision, scale);
    else if constexpr (std::is_same_v<W, CS_UINT>)
        return com__ulongtoexctnume(v, dest, destlen, precision, scale);
    else if constexpr (std::is_same_v<W, CS_BIGINT>)
        return com__longlongtoexctnume(v, dest, destlen, precision, scale);
    else
        return com__ulonglongtoexctnume(v, dest, destlen, precision, scale);
}

// Status 2 can only come from a scale the kernel cannot shift by: the
// sentinel left in the scale alone.
CS_RETCODE status_code(int st)
{
    if (st == kOk)
        return CS_SUCCEED;
    return KES_TRACE(st == kOverflow ? CS_EOVERFLOW : CS_ESCALE);
}

constexpr CS_BYTE kSrcValueMark = 255;

template <class S>
CS_RETCODE comn_tonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt, CS_VOID *dest,
                      CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(S::admits(srcfmt->datatype));
    KES_ASSERT(destfmt->datatype == CS_NUMERIC_TYPE || destfmt->datatype == CS_DECIMAL_TYPE);

    const auto v = kes::conv::load<typename S::type>(src);
    if constexpr (S::is_bit) {
        if (v > 1)
            return KES_TRACE(CS_EDOMAIN);
    }
    *destlen = sizeof(CS_NUMERIC);

    bool src_prec = false;
    bool src_scale = false;
    if constexpr (S::sentinel) {
        src_prec = destfmt->precision == CS_SRC_VALUE;
        src_scale = destfmt->scale == CS_SRC_VALUE;
        if (src_prec)
            destfmt->precision = kSrcValueMark;
        if (src_scale)
            destfmt->scale = kSrcValueMark;
    }
    if (!src_prec && (destfmt->precision < 1 || destfmt->precision > kMaxPrec))
        return KES_TRACE(CS_EPRECISION);
    if (!src_scale && (destfmt->scale < 0 || destfmt->scale > kMaxPrec))
        return KES_TRACE(CS_ESCALE);

    auto *num = static_cast<CS_NUMERIC *>(dest);
    num->precision = static_cast<CS_BYTE>(destfmt->precision);
    num->scale = static_cast<CS_BYTE>(destfmt->scale);
    // Ten bytes hold any 64-bit magnitude with room to spare.
    const int len = src_prec ? 10 : comn_num_getlen(destfmt->precision);
    return status_code(kernel<typename S::wide>(v, num->array, len, &num->precision, &num->scale));
}

template <class S> CS_RETCODE comnb_tonum(CAST_CONTEXT *, __CONSTANT *src, __CONSTANT *dest)
{
    const auto v = kes::conv::load<typename S::type>(src->value);
    if constexpr (S::is_bit) {
        if (v > 1)
            return KES_TRACE(CS_EDOMAIN);
    }
    dest->len = dest->maxlen;
    if (dest->prec == 0 || dest->prec > kMaxPrec)
        return KES_TRACE(CS_EPRECISION);
    if (dest->scale > kMaxPrec)
        return KES_TRACE(CS_ESCALE);
    return status_code(kernel<typename S::wide>(v, dest->value, dest->len, &dest->prec, &dest->scale));
}

} // namespace

extern "C" {

int com__longtoexctnume(CS_INT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    return int_to_exctnume(value, dest, destlen, precision, scale);
}

int com__ulongtoexctnume(CS_UINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    return int_to_exctnume(value, dest, destlen, precision, scale);
}

int com__longlongtoexctnume(CS_BIGINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    return int_to_exctnume(value, dest, destlen, precision, scale);
}

int com__ulonglongtoexctnume(CS_UBIGINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    return int_to_exctnume(value, dest, destlen, precision, scale);
}

} // extern "C"

#define KES_NUM_SOURCES(X) X(i1) X(i2) X(i4) X(i8) X(ui2) X(ui4) X(ui8) X(bit)

#define KES_DEFINE_TONUM(s)                                                                          \
    extern "C" CS_RETCODE comn_##s##tonum(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,       \
                                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen)        \
    {                                                                                                \
        return comn_tonum<src_##s>(context, srcfmt, src, destfmt, dest, destlen);                    \
    }                                                                                                \
    extern "C" CS_RETCODE comnb_##s##tonum(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                                \
        return comnb_tonum<src_##s>(context, src, dest);                                             \
    }

KES_NUM_SOURCES(KES_DEFINE_TONUM)
