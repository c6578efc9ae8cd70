// Text to integers, bit, floats and binary in the context (comn_) and server
// (comnb_) layers, and the scanners they share.  One generic body per
// destination kind; the extern "C" members at the bottom are stamped out.
#include "conv/char_scan.h"
#include "conv/conv_common.h"

#include <langinfo.h>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>

#include "conv/char_scan_text.h"
#include "conv/fill.h"
#include "conv/hex.h"
#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kescomn/charattr.h"
#include "kescomn/conv_scan.h"

namespace {

using kes::conv::ByteText;
using kes::conv::MbText;
using kes::conv::store;
using kes::conv::is_binary_family;
using kes::conv::is_char_family;

// ---- the integer scanner ---------------------------------------------------

// Folds digit d into v, or reports overflow with the value to store.  Only the
// 32-bit signed scanner keeps the partial value (v past the first bound, 10v
// past the second); the others saturate.
template <class T> bool fold_digit(T &v, unsigned d, bool negative, T *valp)
{
    using L = std::numeric_limits<T>;
    constexpr bool keeps_partial = std::is_same_v<T, CS_INT>;
    const T digit = static_cast<T>(d);
    if (!negative) {
        if (v > L::max() / 10) {
            *valp = keeps_partial ? v : L::max();
            return false;
        }
        const T ten = static_cast<T>(v * 10);
        if (L::max() - ten < digit) {
            *valp = keeps_partial ? ten : L::max();
            return false;
        }
        v = static_cast<T>(ten + digit);
    } else if constexpr (std::is_signed_v<T>) {
        if (v < L::min() / 10) {
            *valp = keeps_partial ? v : L::min();
            return false;
        }
        const T ten = static_cast<T>(v * 10);
        if (L::min() - ten > -digit) {
            *valp = keeps_partial ? ten : L::min();
            return false;
        }
        v = static_cast<T>(ten - digit);
    }
    return true;
}

// Blanks and one sign, digits, blanks.  The value runs negative under a minus
// so that the minimum of a signed type is reachable.
template <class T, class Text> int scan_text(Text t, T *valp)
{
    bool negative = false;
    bool signed_already = false;
    while (!t.done()) {
        const unsigned c = t.value();
        if (c == ' ') {
            t.next();
            continue;
        }
        if (c != '-' && c != '+')
            break;
        if (signed_already || (std::is_unsigned_v<T> && c == '-')) {
            *valp = 0;
            return COM_SCAN_SYNTAX;
        }
        signed_already = true;
        negative = c == '-';
        t.next();
    }
    // The first digits10 digits cannot overflow: they gather as a magnitude
    // without the limit tests, and the sign joins before the rest.
    std::make_unsigned_t<T> magnitude = 0;
    constexpr int kSafeDigits = std::numeric_limits<T>::digits10;
    if constexpr (std::is_same_v<Text, ByteText>) {
        const unsigned char *safe_end = t.end - t.p > kSafeDigits ? t.p + kSafeDigits : t.end;
        for (unsigned d; t.p < safe_end && (d = static_cast<unsigned>(*t.p - '0')) <= 9; ++t.p)
            magnitude = static_cast<std::make_unsigned_t<T>>(magnitude * 10 + d);
    } else {
        for (int digits = 0; digits < kSafeDigits && !t.done(); t.next(), digits++) {
            const unsigned d = t.value() - '0';
            if (d > 9)
                break;
            magnitude = static_cast<std::make_unsigned_t<T>>(magnitude * 10 + d);
        }
    }
    T v = negative ? static_cast<T>(-static_cast<T>(magnitude)) : static_cast<T>(magnitude);
    for (; !t.done(); t.next()) {
        const unsigned d = t.value() - '0';
        if (d > 9)
            break;
        if (!fold_digit(v, d, negative, valp))
            return COM_SCAN_OVERFLOW;
    }
    for (; !t.done(); t.next()) {
        if (t.value() != ' ') {
            *valp = v;
            return COM_SCAN_SYNTAX;
        }
    }
    *valp = v;
    return COM_SCAN_VALUE;
}

template <class T> [[gnu::noinline]] int scan_multibyte(const unsigned char *p, int len, T *valp, const CHAR_ATTRIB *chatr)
{
    return scan_text(MbText{p, p + len, chatr}, valp);
}

// The plain byte body serves single-byte sets so that ordinary text never
// touches a map; it is small enough to inline into the members.
template <class T> inline int scan_int(char *cp, int len, T *valp, const CHAR_ATTRIB *chatr)
{
    if (len <= 0) {
        *valp = 0;
        return COM_SCAN_EMPTY;
    }
    const auto *p = reinterpret_cast<const unsigned char *>(cp);
    if (kes::conv::is_multibyte(chatr))
        return scan_multibyte(p, len, valp, chatr);
    return scan_text(ByteText{p, p + len}, valp);
}

// A narrow view of a 32-bit scanner stores low bits, not a saturated value.
template <class N, class W> int scan_narrow(char *cp, int len, N *valp, CHAR_ATTRIB *chatr, W lo, W hi)
{
    W wide;
    int r = scan_int<W>(cp, len, &wide, chatr);
    if (r != COM_SCAN_VALUE) {
        *valp = 0;
        return r;
    }
    if (wide < lo || wide > hi)
        r = COM_SCAN_OVERFLOW;
    *valp = static_cast<N>(wide);
    return r;
}

// ---- attributes of a source ------------------------------------------------

CHAR_ATTRIB *source_attrib(CS_CONTEXT *context, CS_DATAFMT *srcfmt)
{
    return com_intl_charattr(context, srcfmt);
}

// ---- floats ------------------------------------------------------------------

constexpr CS_INT kFloatScratch = 1024;

struct ParsedFloat {
    double value;
    bool range_error;
    bool syntax; // the reader stopped short of the trimmed end
};

// Decimal text goes through std::from_chars, which rounds exactly as strtod
// does; whatever it does not take whole into a finite non-zero value (a plus
// sign, leading white space, hexadecimal, inf, nan, zeros that may be
// underflow, text after the number) and any radix but '.' goes to strtod.
bool read_plain_decimal(const char *text, CS_INT n, double &value)
{
    if (n == 0 || text[0] == '+')
        return false;
    auto [end, ec] = std::from_chars(text, text + n, value);
    if (ec != std::errc() || end != text + n || value == 0.0 || !std::isfinite(value))
        return false;
    const char *radix = nl_langinfo(RADIXCHAR);
    return radix[0] == '.' && radix[1] == '\0';
}

ParsedFloat parse_float(const char *src, CS_INT len, CHAR_ATTRIB *attr, bool edom_is_range)
{
    using kes::conv::is_white_space;
    errno = 0;
    ParsedFloat pf{};
    const bool as_bytes = kes::conv::reads_as_bytes(attr);
    if (as_bytes) {
        CS_INT n = len > 0 ? len : 0;
        while (n > 0 && is_white_space(static_cast<unsigned char>(src[n - 1])))
            n--;
        if (read_plain_decimal(src, n, pf.value))
            return pf;
    }
    char buf[kFloatScratch];
    CS_INT n = com__conv2ascii(src, len, buf, kFloatScratch, as_bytes ? nullptr : attr);
    while (n > 0 && is_white_space(static_cast<unsigned char>(buf[n - 1])))
        n--;
    char *end;
    pf.value = std::strtod(buf, &end);
    pf.range_error = errno == ERANGE || (edom_is_range && errno == EDOM);
    pf.syntax = end != buf + n;
    return pf;
}

// Range, syntax and the single-precision limit, in that order.  A double
// destination holds the reader's value even when the text is refused.
template <class F> CS_RETCODE finish_float(const ParsedFloat &pf, void *dest)
{
    constexpr F kMax = std::numeric_limits<F>::max();
    const double v = pf.value;
    if constexpr (std::is_same_v<F, CS_FLOAT>)
        store<CS_FLOAT>(dest, v);
    if (pf.range_error && v == 0.0) {
        store<F>(dest, static_cast<F>(v));
        return KES_TRACE(CS_EUNDERFLOW);
    }
    if (std::isinf(v)) {
        store<F>(dest, v > 0 ? kMax : -kMax);
        return KES_TRACE(CS_EOVERFLOW);
    }
    if (pf.syntax)
        return KES_TRACE(CS_ESYNTAX);
    if constexpr (std::is_same_v<F, CS_REAL>) {
        if (std::fabs(v) > static_cast<double>(kMax)) {
            store<F>(dest, v > 0 ? kMax : -kMax);
            return KES_TRACE(CS_EOVERFLOW);
        }
        store<F>(dest, static_cast<F>(v));
    }
    return CS_SUCCEED;
}

// ---- hexadecimal text to bytes -------------------------------------------------

enum class HexStatus { done, truncated, no_room, syntax };

struct HexResult {
    HexStatus status;
    CS_INT stored;
};

// An odd digit count aligns the first digit to the right, alone in the first
// byte.  When check_first is false a bad first digit stores 0xFF.
HexResult hex_to_bytes(const CS_CHAR *s, CS_INT n, CS_BYTE *out, CS_INT capacity, bool check_first)
{
    using kes::conv::hex::digit_value;
    const auto *p = reinterpret_cast<const unsigned char *>(s);
    CS_INT i = 0;
    CS_INT k = 0;
    if (n & 1) {
        if (capacity <= 0)
            return {HexStatus::no_room, 0};
        const int d = digit_value(p[0]);
        if (d < 0 && check_first)
            return {HexStatus::syntax, 0};
        out[k++] = static_cast<CS_BYTE>(d);
        i = 1;
    }
    for (; i < n; i += 2) {
        if (k >= capacity)
            return {HexStatus::truncated, k};
        const int hi = digit_value(p[i]);
        const int lo = digit_value(p[i + 1]);
        if ((hi | lo) < 0)
            return {HexStatus::syntax, 0};
        out[k++] = static_cast<CS_BYTE>(hi << 4 | lo);
    }
    return {HexStatus::done, k};
}

// ---- sources and destinations of the members ---------------------------------

struct SourceText {
    CS_CHAR *p;
    CS_INT len;
};

// A text source: where its bytes are, and how a cut of its hexadecimal
// digits is reported.
struct from_char {
    static constexpr CS_RETCODE cut = CS_TRUNCATED;
    static bool admits(CS_INT code) { return is_char_family(code); }
    static SourceText text(CS_DATAFMT *srcfmt, CS_VOID *src)
    {
        return {static_cast<CS_CHAR *>(src), srcfmt->maxlength};
    }
};

struct from_varchar {
    static constexpr CS_RETCODE cut = CS_EOVERFLOW;
    static bool admits(CS_INT code) { return code == CS_VARCHAR_TYPE; }
    static SourceText text(CS_DATAFMT *, CS_VOID *src)
    {
        auto *vc = static_cast<CS_VARCHAR *>(src);
        KES_ASSERT(vc->len <= CS_MAX_CHAR);
        return {vc->str, vc->len};
    }
};

template <class T, int (*Scan)(char *, int, T *, CHAR_ATTRIB *), int Code, int Code2 = Code> struct IntDest {
    using type = T;
    static constexpr auto scan = Scan;
    static bool admits(CS_INT code) { return code == Code || code == Code2; }
};
using to_i1 = IntDest<CS_BYTE, com__chtoi1_mb, CS_TINYINT_TYPE>;
using to_i2 = IntDest<short int, com__chtoi2_mb, CS_SMALLINT_TYPE>;
using to_i4 = IntDest<CS_INT, com__chtoi4_mb, CS_INT_TYPE>;
using to_i8 = IntDest<CS_BIGINT, com__chtoi8_mb, CS_BIGINT_TYPE, CS_LONG_TYPE>;
using to_ui2 = IntDest<CS_USMALLINT, com__chtoui2_mb, CS_USMALLINT_TYPE>;
using to_ui4 = IntDest<CS_UINT, com__chtoui4_mb, CS_UINT_TYPE>;
using to_ui8 = IntDest<CS_UBIGINT, com__chtoui8_mb, CS_UBIGINT_TYPE>;

// The bit is read as a 32-bit integer: any value but 0 is 1.
struct to_bit {
    using type = CS_BIT;
    static bool admits(CS_INT code) { return code == CS_BIT_TYPE; }
};

template <class F, int Code> struct FloatDest {
    using type = F;
    static bool admits(CS_INT code) { return code == Code; }
};
using to_flt4 = FloatDest<CS_REAL, CS_REAL_TYPE>;
using to_flt8 = FloatDest<CS_FLOAT, CS_FLOAT_TYPE>;

template <class D> constexpr bool is_float_dest = std::is_floating_point_v<typename D::type>;

CS_RETCODE scan_code(int r)
{
    switch (r) {
    case COM_SCAN_VALUE:
    case COM_SCAN_EMPTY:
        return CS_SUCCEED;
    case COM_SCAN_OVERFLOW:
        return KES_TRACE(CS_EOVERFLOW);
    case COM_SCAN_SYNTAX:
        return KES_TRACE(CS_ESYNTAX);
    default:
        KES_ASSERT(false);
        return CS_FAIL;
    }
}

// ---- the generic members ---------------------------------------------------------

template <class S, class D>
CS_RETCODE comn_scan(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                     CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(S::admits(srcfmt->datatype));
    KES_ASSERT(D::admits(destfmt->datatype));
    const SourceText t = S::text(srcfmt, src);
    using T = typename D::type;

    if constexpr (is_float_dest<D>) {
        if (t.len >= kFloatScratch) {
            *destlen = 0;
            return KES_TRACE(CS_ESYNTAX);
        }
        const ParsedFloat pf = parse_float(t.p, t.len, source_attrib(context, srcfmt), false);
        *destlen = sizeof(T);
        const CS_RETCODE rc = finish_float<T>(pf, dest);
        if (rc == CS_ESYNTAX)
            *destlen = 0;
        return rc;
    } else {
        KES_ASSERT(t.len >= 1);
        *destlen = sizeof(T);
        CHAR_ATTRIB *attr = source_attrib(context, srcfmt);
        if constexpr (std::is_same_v<D, to_bit>) {
            CS_INT v;
            const int r = com__chtoi4_mb(t.p, t.len, &v, attr);
            if (r == COM_SCAN_SYNTAX)
                *destlen = 0;
            else if (r != COM_SCAN_OVERFLOW)
                store<CS_BIT>(dest, v != 0 ? 1 : 0);
            return scan_code(r);
        } else {
            T v;
            const int r = D::scan(t.p, t.len, &v, attr);
            store<T>(dest, v);
            if (r == COM_SCAN_SYNTAX)
                *destlen = 0;
            return scan_code(r);
        }
    }
}

template <class D> CS_RETCODE comnb_scan(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    using T = typename D::type;
    auto *text = reinterpret_cast<CS_CHAR *>(src->value);
    dest->len = sizeof(T);
    if constexpr (is_float_dest<D>) {
        if (src->len >= kFloatScratch)
            return KES_TRACE(CS_ESYNTAX);
        return finish_float<T>(parse_float(text, src->len, context->char_attrib, true), dest->value);
    } else {
        T v;
        const int r = D::scan(text, src->len, &v, context->char_attrib);
        store<T>(dest->value, v);
        return scan_code(r);
    }
}

// Text to a binary destination of destfmt->maxlength bytes.
template <class S>
CS_RETCODE comn_hex_to_bin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                           CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(S::admits(srcfmt->datatype));
    KES_ASSERT(is_binary_family(destfmt->datatype));
    SourceText t = S::text(srcfmt, src);
    comn__hex2binbytes(&t.p, &t.len);
    *destlen = 0;
    const HexResult h = hex_to_bytes(t.p, t.len, static_cast<CS_BYTE *>(dest), destfmt->maxlength, true);
    switch (h.status) {
    case HexStatus::syntax:
        return KES_TRACE(CS_ESYNTAX);
    case HexStatus::no_room:
        return KES_TRACE(CS_EOVERFLOW);
    case HexStatus::truncated:
        *destlen = h.stored;
        return KES_TRACE(S::cut);
    case HexStatus::done:
        break;
    }
    *destlen = h.stored;
    return comn__padbin(*destlen, destfmt, dest, destlen);
}

// Text to the 256 bytes of a CS_VARBINARY; no fill.  The two sources differ:
// CS_VARCHAR tests an odd first digit, reports a cut as CS_EOVERFLOW with
// *destlen at the bytes stored, and calls a full destfmt->maxlength an
// overflow too.
template <class S>
CS_RETCODE comn_hex_to_varbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                              CS_VOID *dest, CS_INT *destlen)
{
    KES_CHECK_COMN_ARGS();
    KES_ASSERT(S::admits(srcfmt->datatype));
    KES_ASSERT(destfmt->datatype == CS_VARBINARY_TYPE);
    constexpr bool from_text = std::is_same_v<S, from_char>;
    SourceText t = S::text(srcfmt, src);
    comn__hex2binbytes(&t.p, &t.len);
    auto *vb = static_cast<CS_VARBINARY *>(dest);
    const HexResult h = hex_to_bytes(t.p, t.len, vb->array, CS_MAX_CHAR, !from_text);
    if (h.status == HexStatus::syntax) {
        vb->len = 0;
        *destlen = 0;
        return KES_TRACE(CS_ESYNTAX);
    }
    vb->len = static_cast<CS_SMALLINT>(h.stored);
    *destlen = sizeof(CS_VARBINARY);
    if (h.status == HexStatus::truncated) {
        if (!from_text)
            *destlen = h.stored;
        return KES_TRACE(S::cut);
    }
    if (!from_text && h.stored >= destfmt->maxlength)
        return KES_TRACE(CS_EOVERFLOW);
    return CS_SUCCEED;
}

} // namespace

// ---- the scanners ------------------------------------------------------------------

extern "C" {

int com__chtoi4_mb(char *cp, int len, CS_INT *valp, CHAR_ATTRIB *chatr)
{
    return scan_int(cp, len, valp, chatr);
}

int com__chtoi8_mb(char *cp, int len, CS_BIGINT *valp, CHAR_ATTRIB *chatr)
{
    return scan_int(cp, len, valp, chatr);
}

int com__chtoui4_mb(char *cp, int len, CS_UINT *valp, CHAR_ATTRIB *chatr)
{
    return scan_int(cp, len, valp, chatr);
}

int com__chtoui8_mb(char *cp, int len, CS_UBIGINT *valp, CHAR_ATTRIB *chatr)
{
    return scan_int(cp, len, valp, chatr);
}

int com__chtoi1_mb(char *cp, int len, CS_BYTE *valp, CHAR_ATTRIB *chatr)
{
    return scan_narrow<CS_BYTE, CS_INT>(cp, len, valp, chatr, 0, 255);
}

int com__chtoi2_mb(char *cp, int len, short int *valp, CHAR_ATTRIB *chatr)
{
    return scan_narrow<short int, CS_INT>(cp, len, valp, chatr, -32768, 32767);
}

int com__chtoui2_mb(char *cp, int len, CS_USMALLINT *valp, CHAR_ATTRIB *chatr)
{
    return scan_narrow<CS_USMALLINT, CS_UINT>(cp, len, valp, chatr, 0, 65535);
}

void comn__hex2binbytes(CS_CHAR **src, CS_INT *srclen)
{
    CS_CHAR *p = *src;
    CS_INT n = *srclen > 0 ? *srclen : 0;
    while (n > 0 && kes::conv::is_white_space(static_cast<unsigned char>(p[n - 1])))
        n--;
    while (n > 0 && kes::conv::is_white_space(static_cast<unsigned char>(*p))) {
        p++;
        n--;
    }
    if (n >= 2 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X')) {
        p += 2;
        n -= 2;
    }
    *src = p;
    *srclen = n;
}

CS_INT com__conv2ascii(const CS_CHAR *src, CS_INT srclen, CS_CHAR *dest, CS_INT destsize, CHAR_ATTRIB *chatr)
{
    if (destsize <= 0)
        return 0;
    size_t n = srclen > 0 ? static_cast<size_t>(srclen) : 0;
    if (const void *nul = n > 0 ? std::memchr(src, 0, n) : nullptr)
        n = static_cast<size_t>(static_cast<const CS_CHAR *>(nul) - src);
    if (n > static_cast<size_t>(destsize - 1))
        n = static_cast<size_t>(destsize - 1);
    CS_INT out = static_cast<CS_INT>(n);
    if (chatr != nullptr)
        comn_str_to_ascii(src, out, dest, &out, chatr);
    else if (n > 0)
        std::memcpy(dest, src, n);
    dest[out] = '\0';
    return out;
}

} // extern "C"

// ---- the members, destination by destination -----------------------------------

#define KES_SCAN_DESTS(X) X(i1) X(i2) X(i4) X(i8) X(ui2) X(ui4) X(ui8) X(flt4) X(flt8)

#define KES_DEFINE_COMN_SCAN(S, s, d)                                                         \
    extern "C" CS_RETCODE comn_##s##to##d(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, \
                                          CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen) \
    {                                                                                         \
        return comn_scan<S, to_##d>(context, srcfmt, src, destfmt, dest, destlen);            \
    }
#define KES_DEFINE_COMNB_SCAN(s, d)                                                           \
    extern "C" CS_RETCODE comnb_##s##to##d(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest) \
    {                                                                                         \
        return comnb_scan<to_##d>(context, src, dest);                                        \
    }
#define KES_DEFINE_TEXT(d)                                                                    \
    KES_DEFINE_COMN_SCAN(from_char, char, d) KES_DEFINE_COMNB_SCAN(char, d)                   \
    KES_DEFINE_COMN_SCAN(from_varchar, varchar, d) KES_DEFINE_COMNB_SCAN(varchar, d)

KES_SCAN_DESTS(KES_DEFINE_TEXT)
KES_DEFINE_COMN_SCAN(from_char, char, bit)
KES_DEFINE_COMN_SCAN(from_varchar, varchar, bit)

extern "C" {

CS_RETCODE comn_chartobin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                          CS_VOID *dest, CS_INT *destlen)
{
    return comn_hex_to_bin<from_char>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_chartovarbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen)
{
    return comn_hex_to_varbin<from_char>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_varchartobin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                             CS_VOID *dest, CS_INT *destlen)
{
    return comn_hex_to_bin<from_varchar>(context, srcfmt, src, destfmt, dest, destlen);
}

CS_RETCODE comn_varchartovarbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src, CS_DATAFMT *destfmt,
                                CS_VOID *dest, CS_INT *destlen)
{
    return comn_hex_to_varbin<from_varchar>(context, srcfmt, src, destfmt, dest, destlen);
}

// Bytes only, whatever the character set: signs and blanks in any mix, then
// digits of any length, then blanks.
CS_RETCODE comnb_chartobit(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    const CS_BYTE *p = src->value;
    const CS_INT len = src->len > 0 ? src->len : 0;
    CS_INT i = 0;
    int signs = 0;
    for (; i < len && (p[i] == ' ' || p[i] == '+' || p[i] == '-'); i++)
        signs += p[i] != ' ';
    CS_BIT bit = 0;
    for (; i < len && p[i] >= '0' && p[i] <= '9'; i++)
        bit |= p[i] != '0';
    while (i < len && p[i] == ' ')
        i++;
    dest->len = 1;
    if (i != len || signs > 1)
        return KES_TRACE(CS_ESYNTAX);
    dest->value[0] = bit;
    return CS_SUCCEED;
}

// The server hands a CS_VARCHAR over as its text and length.
CS_RETCODE comnb_varchartobit(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_chartobit(context, src, dest);
}

} // extern "C"
