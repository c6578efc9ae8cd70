// Floating point conversions in the context (comn_) and server (comnb_)
// layers.  One generic body per destination kind; the extern "C" members at
// the bottom are stamped out from the lists of sources and destinations.
#include <immintrin.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "conv/conv_common.h"
#include "conv/fill.h"
#include "conv/scalar_io.h"
#include "kescomn/conv_float.h"
#include "numeric/mny.h"

namespace {

using namespace kes::conv;

// ---- float to integer --------------------------------------------------------

// The bounds of one destination.  A value below lo stores lo_store, above hi
// stores hi_store; the bounds of i8 and ui8 are a little inside the exact
// limits because those are the largest doubles (or singles) that still
// convert, and a single source compares against single-precision bounds there.
template <class S, class D> struct Bounds;

template <class S> struct Bounds<S, tok_i1> {
    static constexpr double lo = 0.0, hi = 255.0;
    static constexpr CS_TINYINT lo_store = 0, hi_store = 255;
};
template <class S> struct Bounds<S, tok_i2> {
    static constexpr double lo = -32768.0, hi = 32767.0;
    static constexpr CS_SMALLINT lo_store = -32768, hi_store = 32767;
};
template <class S> struct Bounds<S, tok_i4> {
    static constexpr double lo = -2147483648.0, hi = 2147483647.0;
    static constexpr CS_INT lo_store = INT32_MIN, hi_store = INT32_MAX;
};
template <> struct Bounds<tok_flt8, tok_i8> {
    static constexpr double lo = -9223372036854769664.0, hi = 9223372036854769664.0;
    static constexpr CS_BIGINT lo_store = -9223372036854769664LL, hi_store = 9223372036854769664LL;
};
template <> struct Bounds<tok_flt4, tok_i8> {
    static constexpr float lo = -9.22337e18f, hi = 9.22337e18f;
    static constexpr CS_BIGINT lo_store = -9223370000000000000LL, hi_store = 9223370000000000000LL;
};
template <class S> struct Bounds<S, tok_ui2> {
    static constexpr double lo = 0.0, hi = 65535.0;
    static constexpr CS_USMALLINT lo_store = 0, hi_store = 65535;
};
template <class S> struct Bounds<S, tok_ui4> {
    static constexpr double lo = 0.0, hi = 4294967295.0;
    static constexpr CS_UINT lo_store = 0, hi_store = UINT32_MAX;
};
template <> struct Bounds<tok_flt8, tok_ui8> {
    static constexpr double lo = 0.0, hi = 18446744073709500416.0;
    static constexpr CS_UBIGINT lo_store = 0, hi_store = 18446744073709500416ULL;
};
template <> struct Bounds<tok_flt4, tok_ui8> {
    static constexpr float lo = 0.0f, hi = 1.84467e19f;
    static constexpr CS_UBIGINT lo_store = 0, hi_store = 18446700000000000000ULL;
};

// The processor's truncating conversions.  They are defined for every input
// (a NaN gives the "integer indefinite" 0x80...0), so a NaN, which passes
// both bounds, truncates to what the machine gives without undefined behaviour.
inline int32_t machine_trunc32(double v) { return _mm_cvttsd_si32(_mm_set_sd(v)); }
inline int64_t machine_trunc64(double v) { return _mm_cvttsd_si64(_mm_set_sd(v)); }

// Truncation toward zero of a value inside D's bounds.  Widths up to 16 bits
// and i4 go through the 32-bit instruction, ui4 and the 64-bit types through
// the 64-bit one, as compiled C does.
template <class D> typename D::type truncate(double v)
{
    using DT = typename D::type;
    if constexpr (std::is_same_v<D, tok_ui8>) {
        constexpr double two63 = 9223372036854775808.0;
        // One less than exact in the upper half, as the stored contract has it.
        if (v >= two63)
            return 9223372036854775807ULL + static_cast<uint64_t>(machine_trunc64(v - two63));
        return static_cast<uint64_t>(machine_trunc64(v));
    } else if constexpr (sizeof(DT) == 8 || std::is_same_v<D, tok_ui4>) {
        return static_cast<DT>(machine_trunc64(v));
    } else {
        return static_cast<DT>(machine_trunc32(v));
    }
}


// Stores the float source v into the integer destination; the code says
// whether a bound was hit.
template <Layer L, class S, class D> CS_RETCODE float_to_int(typename S::type v, void *dest)
{
    using B = Bounds<S, D>;
    using DT = typename D::type;
    if (v < B::lo) {
        store<DT>(dest, B::lo_store);
        return KES_TRACE((L == Layer::comn && is_unsigned_wide<D>) ? CS_EUNDERFLOW : CS_EOVERFLOW);
    }
    if (v > B::hi) {
        store<DT>(dest, B::hi_store);
        return KES_TRACE(CS_EOVERFLOW);
    }
    store<DT>(dest, truncate<D>(static_cast<double>(v)));
    return CS_SUCCEED;
}

// ---- float to float ----------------------------------------------------------

// A double beyond the largest single saturates to it (no infinity is made);
// below the smallest it simply rounds, to zero if need be.
CS_RETCODE narrow_to_single(double v, void *dest)
{
    constexpr double largest = 3.4028234663852886e38;
    if (v > largest) {
        store<uint32_t>(dest, 0x7f7fffffU);
        return KES_TRACE(CS_EOVERFLOW);
    }
    if (v < -largest) {
        store<uint32_t>(dest, 0xff7fffffU);
        return KES_TRACE(CS_EOVERFLOW);
    }
    store<float>(dest, static_cast<float>(v));
    return CS_SUCCEED;
}

template <class S, class D> CS_RETCODE float_to_float(typename S::type v, void *dest)
{
    if constexpr (std::is_same_v<S, tok_flt8> && std::is_same_v<D, tok_flt4>)
        return narrow_to_single(v, dest);
    else
        store<typename D::type>(dest, static_cast<typename D::type>(v));
    return CS_SUCCEED;
}

// ---- float to money --------------------------------------------------------------

// The money kernels' answer: the size stored, or -1 beyond the range.
template <class S, class D> int float_to_money(typename S::type v, void *dest)
{
    constexpr CS_INT size = sizeof v;
    if constexpr (std::is_same_v<S, tok_flt8>)
        return std::is_same_v<D, tok_money> ? com__flt8tomny(&v, size, dest, 8, 0) : com__flt8tomny4(&v, size, dest, 0);
    else
        return std::is_same_v<D, tok_money> ? com__flt4tomny(&v, size, dest, 8, 0) : com__flt4tomny4(&v, size, dest, 0);
}

// ---- text ----------------------------------------------------------------------

// "%.17g" of the value (a single widened first, so it shows the digits of its
// exact double), then ".5" for "0.5" and ".0" after a number that has neither
// point nor exponent.  to_chars gives the same digits as the formatted print
// at a fraction of its cost; the longest text is 24 characters.
struct FloatText {
    char buf[32];
    CS_INT len;
};

FloatText format_float(double v)
{
    if (v == 0.0)
        v = 0.0; // -0.0 prints as the positive zero
    FloatText t;
    // A whole number below 10^17 prints as its exact integer digits, and
    // integer formatting costs a fraction of the general one.
    if (std::fabs(v) < 1e17 && static_cast<double>(static_cast<int64_t>(v)) == v) {
        char *end = std::to_chars(t.buf, t.buf + sizeof t.buf, static_cast<int64_t>(v)).ptr;
        std::memcpy(end, ".0", 2);
        t.len = static_cast<CS_INT>(end + 2 - t.buf);
        return t;
    }
    auto [end, ec] = std::to_chars(t.buf, t.buf + sizeof t.buf - 2, v, std::chars_format::general, 17);
    KES_ASSERT(ec == std::errc());
    char *text = t.buf;
    if (end - text >= 2 && text[0] == '0' && text[1] == '.')
        ++text;
    if (std::memchr(text, '.', static_cast<size_t>(end - text)) == nullptr &&
        std::memchr(text, 'e', static_cast<size_t>(end - text)) == nullptr) {
        *end++ = '.';
        *end++ = '0';
    }
    t.len = static_cast<CS_INT>(end - text);
    if (text != t.buf)
        std::memmove(t.buf, text, static_cast<size_t>(t.len));
    return t;
}

// ---- the generic members -------------------------------------------------------

template <class S, class D>
CS_RETCODE comn_convert(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                        CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(srcfmt->datatype == S::code);
    KES_ASSERT(admits_dest<D>(destfmt->datatype));

    using ST = typename S::type;
    const ST v = load<ST>(src);

    if constexpr (is_int_token<D>) {
        *destlen = sizeof(typename D::type);
        return float_to_int<Layer::comn, S, D>(v, dest);
    } else if constexpr (std::is_same_v<D, tok_bit>) {
        *destlen = 1;
        store<CS_BIT>(dest, v != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (is_float_token<D>) {
        *destlen = sizeof(typename D::type);
        return float_to_float<S, D>(v, dest);
    } else if constexpr (is_money_token<D>) {
        *destlen = sizeof(typename D::type);
        return float_to_money<S, D>(v, dest) < 0 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_char>) {
        KES_ASSERT(destfmt->maxlength >= 0);
        const FloatText t = format_float(v);
        return comn_number_text_out(t.buf, t.len, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, tok_varchar>) {
        const FloatText t = format_float(v);
        auto *vc = static_cast<CS_VARCHAR *>(dest);
        *destlen = sizeof(CS_VARCHAR);
        std::memcpy(vc->str, t.buf, static_cast<size_t>(t.len));
        vc->len = static_cast<CS_SMALLINT>(t.len);
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_bin>) {
        return comn_fixedtobin(context, srcfmt, src, destfmt, dest, destlen, sizeof(ST));
    } else {
        static_assert(std::is_same_v<D, tok_varbin>);
        return comn_fixedtovarbin(context, srcfmt, src, destfmt, dest, destlen, sizeof(ST));
    }
}

template <class S, class D> CS_RETCODE comnb_convert(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    using ST = typename S::type;
    const ST v = load<ST>(src->value);

    if constexpr (is_int_token<D>) {
        dest->len = sizeof(typename D::type);
        return float_to_int<Layer::comnb, S, D>(v, dest->value);
    } else if constexpr (std::is_same_v<D, tok_bit>) {
        dest->len = 1;
        store<CS_BIT>(dest->value, v != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (is_float_token<D>) {
        dest->len = sizeof(typename D::type);
        return float_to_float<S, D>(v, dest->value);
    } else if constexpr (is_money_token<D>) {
        dest->len = sizeof(typename D::type);
        if (float_to_money<S, D>(v, dest->value) >= 0)
            return CS_SUCCEED;
        if constexpr (std::is_same_v<S, tok_flt4>)
            dest->len = 0; // only the single source clears the length
        return KES_TRACE(CS_EOVERFLOW);
    } else if constexpr (std::is_same_v<D, tok_char>) {
        const FloatText t = format_float(v);
        dest->len = t.len < dest->maxlen ? t.len : dest->maxlen;
        if (!text_has_room(dest->maxlen, t.len, context->format)) {
            if constexpr (std::is_same_v<S, tok_flt4>)
                dest->len = 0; // only the single source clears the length
            return KES_TRACE(CS_EOVERFLOW);
        }
        std::memcpy(dest->value, t.buf, static_cast<size_t>(t.len));
        return comnb__padchar(context, dest);
    } else {
        static_assert(std::is_same_v<D, tok_varchar>);
        const FloatText t = format_float(v);
        dest->len = t.len < dest->maxlen ? t.len : dest->maxlen;
        if (dest->len != t.len)
            return KES_TRACE(CS_EOVERFLOW);
        std::memcpy(dest->value, t.buf, static_cast<size_t>(t.len));
        return CS_SUCCEED;
    }
}

} // namespace

// ---- the members, source by destination -------------------------------------------

#define KES_FLOAT_SOURCES(X) X(flt4) X(flt8)

#define KES_COMNB_DESTS(X, s)                                                                \
    X(s, i1) X(s, i2) X(s, i4) X(s, i8) X(s, ui2) X(s, ui4) X(s, ui8) X(s, bit) X(s, flt4)  \
    X(s, flt8) X(s, money) X(s, mny4) X(s, char) X(s, varchar)
#define KES_COMN_DESTS(X, s) KES_COMNB_DESTS(X, s) X(s, bin) X(s, varbin)

#define KES_DEFINE_FLOAT_COMN(s, d) KES_DEFINE_COMN(comn_convert, s, d)
#define KES_DEFINE_FLOAT_COMNB(s, d) KES_DEFINE_COMNB(comnb_convert, s, d)
#define KES_DEFINE_ROW(s) KES_COMN_DESTS(KES_DEFINE_FLOAT_COMN, s) KES_COMNB_DESTS(KES_DEFINE_FLOAT_COMNB, s)

KES_FLOAT_SOURCES(KES_DEFINE_ROW)
