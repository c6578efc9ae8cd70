// Integer and bit conversions in the context (comn_) and server (comnb_)
// layers.  One generic body per destination kind; the extern "C" members at
// the bottom are stamped out from the lists of sources and destinations.
#include <charconv>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "conv/conv_common.h"
#include "conv/fill.h"
#include "conv/scalar_io.h"
#include "kescomn/conv_int.h"

namespace {

using namespace kes::conv;

// ---- type assertions of the comn_ layer ----------------------------------

// CS_LONG reaches only the 64-bit members whose destination is 32 or 64 bits
// wide or unsigned; the others admit CS_BIGINT alone.
template <class S, class D> constexpr bool admits_source(CS_INT code)
{
    if (code == S::code)
        return true;
    if constexpr (std::is_same_v<S, tok_i8>)
        return code == CS_LONG_TYPE &&
               (std::is_same_v<D, tok_i4> || std::is_same_v<D, tok_i8> || is_unsigned_wide<D>);
    return false;
}

// ---- integer narrowing -----------------------------------------------------

// The code for a value below the destination's range.  The unevenness is the
// contract: only the 64-bit source reports CS_EUNDERFLOW into i1 and i2, while
// every signed source does so into the wide unsigned types; the server layer
// always says CS_EOVERFLOW.
template <Layer L, class S, class D> constexpr CS_RETCODE below_range_code()
{
    if constexpr (L == Layer::comnb)
        return CS_EOVERFLOW;
    else if constexpr (is_unsigned_wide<D>)
        return CS_EUNDERFLOW;
    else if constexpr (std::is_same_v<S, tok_i8> && (std::is_same_v<D, tok_i1> || std::is_same_v<D, tok_i2>))
        return CS_EUNDERFLOW;
    else
        return CS_EOVERFLOW;
}

struct Narrowed {
    CS_RETCODE code;
    bool below;
};

// Saturates v into D's range and stores it at dest.
template <Layer L, class S, class D> Narrowed narrow_int(typename S::type v, void *dest)
{
    using DT = typename D::type;
    constexpr DT lo = std::numeric_limits<DT>::min();
    constexpr DT hi = std::numeric_limits<DT>::max();
    if (std::cmp_less(v, lo)) {
        store<DT>(dest, lo);
        return {KES_TRACE((below_range_code<L, S, D>())), true};
    }
    if (std::cmp_greater(v, hi)) {
        store<DT>(dest, hi);
        return {KES_TRACE(CS_EOVERFLOW), false};
    }
    store<DT>(dest, static_cast<DT>(v));
    return {CS_SUCCEED, false};
}

// ---- integer to float ------------------------------------------------------

template <class F> F float_bits(uint64_t bits)
{
    if constexpr (sizeof(F) == 4) {
        auto narrow = static_cast<uint32_t>(bits);
        F f;
        std::memcpy(&f, &narrow, 4);
        return f;
    } else {
        F f;
        std::memcpy(&f, &bits, 8);
        return f;
    }
}

// Only the 64-bit sources clamp, silently, at fixed thresholds; an unsigned
// source with its top bit set goes in two steps, the added 1 included.
template <class S, class F> F int_to_float(typename S::type v)
{
    if constexpr (std::is_same_v<S, tok_i8>) {
        if constexpr (sizeof(F) == 4) {
            if (v >= 9223370000000000000LL)
                return float_bits<F>(0x5efffffcU);
        } else {
            if (v >= 9223372036854769664LL)
                return 9223372036854769664.0;
        }
        return static_cast<F>(v);
    } else if constexpr (std::is_same_v<S, tok_ui8>) {
        constexpr uint64_t top = uint64_t{1} << 63;
        if constexpr (sizeof(F) == 4) {
            if (v >= 18446700000000000000ULL)
                return float_bits<F>(0x5f7fffd8U);
        } else {
            if (v >= 18446744073709500416ULL)
                return float_bits<F>(0x43efffffffffffe7ULL);
        }
        if (v >= top)
            return static_cast<F>(top) + static_cast<F>(v - top + 1);
        return static_cast<F>(v);
    } else {
        return static_cast<F>(v);
    }
}

// ---- text ------------------------------------------------------------------

// Plain decimal: minus sign for negatives, no plus, no leading zeros.
struct DecimalText {
    char buf[64];
    CS_INT len;
};

template <class T> DecimalText format_decimal(T v)
{
    DecimalText t;
    auto [end, ec] = std::to_chars(t.buf, t.buf + sizeof t.buf, v);
    KES_ASSERT(ec == std::errc());
    t.len = static_cast<CS_INT>(end - t.buf);
    return t;
}

// ---- the generic members -------------------------------------------------

template <class S, class D>
CS_RETCODE comn_convert(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                        CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT((admits_source<S, D>(srcfmt->datatype)));
    KES_ASSERT(admits_dest<D>(destfmt->datatype));

    using ST = typename S::type;
    const ST v = load<ST>(src);

    if constexpr (std::is_same_v<S, tok_bit>) {
        if (v > 1)
            return KES_TRACE(CS_EDOMAIN);
    }

    if constexpr (is_int_token<D>) {
        *destlen = sizeof(typename D::type);
        return narrow_int<Layer::comn, S, D>(v, dest).code;
    } else if constexpr (std::is_same_v<D, tok_bit>) {
        *destlen = 1;
        store<CS_BIT>(dest, v != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_flt4> || std::is_same_v<D, tok_flt8>) {
        using FT = typename D::type;
        *destlen = sizeof(FT);
        store<FT>(dest, int_to_float<S, FT>(v));
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<S, tok_bit>) {
        // Bit to text and bytes: one character or byte, each with its own rule.
        const char digit = v != 0 ? '1' : '0';
        if constexpr (std::is_same_v<D, tok_char>) {
            *destlen = 1;
            if (destfmt->maxlength > 0)
                *static_cast<char *>(dest) = digit;
            return comn__padchar(1, destfmt, dest, destlen);
        } else if constexpr (std::is_same_v<D, tok_bin>) {
            *destlen = 1;
            if (destfmt->maxlength > 0)
                *static_cast<CS_BYTE *>(dest) = v;
            return comn__padbin(1, destfmt, dest, destlen);
        } else if constexpr (std::is_same_v<D, tok_varchar>) {
            auto *vc = static_cast<CS_VARCHAR *>(dest);
            vc->len = 1;
            vc->str[0] = digit;
            return CS_SUCCEED;
        } else {
            static_assert(std::is_same_v<D, tok_varbin>);
            auto *vb = static_cast<CS_VARBINARY *>(dest); // the character, not the byte value
            vb->len = 1;
            vb->array[0] = static_cast<CS_BYTE>(digit);
            return CS_SUCCEED;
        }
    } else if constexpr (std::is_same_v<D, tok_char>) {
        // When any value of the type fits, the digits go straight to the
        // destination; the room test cannot fail then.
        constexpr CS_INT kLongest = std::numeric_limits<ST>::digits10 + 2;
        if (destfmt->maxlength > kLongest) {
            char *text = static_cast<char *>(dest);
            *destlen = static_cast<CS_INT>(std::to_chars(text, text + kLongest, v).ptr - text);
            return comn__padchar(*destlen, destfmt, dest, destlen);
        }
        const DecimalText t = format_decimal(v);
        return comn_number_text_out(t.buf, t.len, destfmt, dest, destlen);
    } else if constexpr (std::is_same_v<D, tok_varchar>) {
        const DecimalText t = format_decimal(v);
        auto *vc = static_cast<CS_VARCHAR *>(dest);
        *destlen = sizeof(CS_VARCHAR);
        std::memcpy(vc->str, t.buf, static_cast<size_t>(t.len));
        vc->str[t.len] = '\0';
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

    if constexpr (std::is_same_v<S, tok_bit>) {
        if (v > 1)
            return KES_TRACE(CS_EDOMAIN);
    }

    if constexpr (is_int_token<D>) {
        dest->len = sizeof(typename D::type);
        const Narrowed r = narrow_int<Layer::comnb, S, D>(v, dest->value);
        // Only a 16-bit signed source clears the length below a wide unsigned range.
        if (r.below && std::is_same_v<S, tok_i2> && is_unsigned_wide<D>)
            dest->len = 0;
        return r.code;
    } else if constexpr (std::is_same_v<D, tok_bit>) {
        dest->len = 1;
        store<CS_BIT>(dest->value, v != 0 ? 1 : 0);
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<D, tok_flt4> || std::is_same_v<D, tok_flt8>) {
        using FT = typename D::type;
        dest->len = sizeof(FT);
        store<FT>(dest->value, int_to_float<S, FT>(v));
        return CS_SUCCEED;
    } else if constexpr (std::is_same_v<S, tok_bit>) {
        const char digit = v != 0 ? '1' : '0';
        if constexpr (std::is_same_v<D, tok_char>) {
            dest->len = 1;
            if (dest->maxlen > 0)
                dest->value[0] = static_cast<CS_BYTE>(digit);
            return comnb__padchar(context, dest);
        } else {
            static_assert(std::is_same_v<D, tok_varchar>);
            if (dest->maxlen < 1) {
                dest->len = 0;
                return KES_TRACE(CS_EOVERFLOW);
            }
            dest->len = 1;
            dest->value[0] = static_cast<CS_BYTE>(digit);
            return CS_SUCCEED;
        }
    } else if constexpr (std::is_same_v<D, tok_char>) {
        const DecimalText t = format_decimal(v);
        return comnb_number_text_out(context, t.buf, t.len, dest);
    } else {
        static_assert(std::is_same_v<D, tok_varchar>);
        const DecimalText t = format_decimal(v);
        dest->len = t.len < dest->maxlen ? t.len : dest->maxlen;
        if (dest->len != t.len)
            return KES_TRACE(CS_EOVERFLOW);
        std::memcpy(dest->value, t.buf, static_cast<size_t>(t.len));
        return CS_SUCCEED;
    }
}

} // namespace

// ---- the members, source by destination -----------------------------------

#define KES_INT_SOURCES(X) X(i1) X(i2) X(i4) X(i8) X(ui2) X(ui4) X(ui8) X(bit)

#define KES_COMNB_DESTS(X, s)                                                                \
    X(s, i1) X(s, i2) X(s, i4) X(s, i8) X(s, ui2) X(s, ui4) X(s, ui8) X(s, bit) X(s, flt4)  \
    X(s, flt8) X(s, char) X(s, varchar)
#define KES_COMN_DESTS(X, s) KES_COMNB_DESTS(X, s) X(s, bin) X(s, varbin)

#define KES_DEFINE_INT_COMN(s, d) KES_DEFINE_COMN(comn_convert, s, d)
#define KES_DEFINE_INT_COMNB(s, d) KES_DEFINE_COMNB(comnb_convert, s, d)
#define KES_DEFINE_ROW(s) KES_COMN_DESTS(KES_DEFINE_INT_COMN, s) KES_COMNB_DESTS(KES_DEFINE_INT_COMNB, s)

KES_INT_SOURCES(KES_DEFINE_ROW)
