/*
** Record arithmetic in machine words.  An operand of at most 38 digits
** (17 bytes) fits two 64-bit words, and its products and scaled dividends
** fit four, so the common column shapes need neither the byte form nor the
** byte kernel's general loops.
**
** Each operation takes records that are not null and either writes the
** whole result (its bytes, precision and scale) and succeeds, or declines
** and writes nothing.  It declines on a wider operand, a scale above the
** precision, operands of different shape in a sum, a result that fails its
** precision and a zero divisor; the
** byte kernel then runs on the untouched records and decides the outcome
** and its result code, so both paths give the same bytes for every input.
** All operand bytes are read before the first write, so the result may be
** an operand.
**
** The operations are templates on what fixes their offsets and word
** counts: a sum on its operands' precision, a product and a quotient on the
** number of words each operand needs.  An instantiation then loads, checks
** and stores at constant or branch-free offsets; at these sizes that work
** costs as much as the arithmetic.
*/
#ifndef KESCOMN_NUMERIC_WORDPATH_H
#define KESCOMN_NUMERIC_WORDPATH_H

#include <bit>
#include <cstdint>
#include <cstring>

#include "kescomn/types.h"
#include "numeric/limbs.h"
#include "numeric/nume_tables.h"
#include "numeric/shapes.h"

namespace kes::numeric::words {

using u128 = unsigned __int128;

// The largest precision whose magnitude fits two words.
inline constexpr int kMaxWordPrec = 38;

// A magnitude below 2^256, least significant word first.
struct U256 {
    uint64_t w[4];
};

constexpr U256 times_ten(U256 x)
{
    uint64_t carry = 0;
    for (uint64_t &w : x.w) {
        const u128 t = static_cast<u128>(w) * 10 + carry;
        w = static_cast<uint64_t>(t);
        carry = static_cast<uint64_t>(t >> 64);
    }
    return x;
}

struct PowerTable {
    U256 p[kMaxPrec + 1];
};

constexpr PowerTable make_powers()
{
    PowerTable t{};
    t.p[0] = U256{{1, 0, 0, 0}};
    for (int n = 1; n <= kMaxPrec; ++n)
        t.p[n] = times_ten(t.p[n - 1]);
    return t;
}

// 10^0 .. 10^77; the last is just below 2^256.
inline constexpr PowerTable kPow = make_powers();
static_assert(kPow.p[19].w[0] == 10000000000000000000ull && kPow.p[19].w[1] == 0);
static_assert(kPow.p[77].w[3] > 0xdd00000000000000ull);

inline uint64_t be64(const CS_BYTE *p)
{
    uint64_t v;
    std::memcpy(&v, p, 8);
    return __builtin_bswap64(v);
}

inline U256 widen(u128 v) { return U256{{static_cast<uint64_t>(v), static_cast<uint64_t>(v >> 64), 0, 0}}; }

inline u128 join(uint64_t hi, uint64_t lo) { return (static_cast<u128>(hi) << 64) | lo; }

// Compared by halves from the top, where values of different size part.
inline bool less(const U256 &x, const U256 &y)
{
    const u128 xt = join(x.w[3], x.w[2]), yt = join(y.w[3], y.w[2]);
    return xt < yt || (xt == yt && join(x.w[1], x.w[0]) < join(y.w[1], y.w[0]));
}

inline bool is_zero(const U256 &x) { return (x.w[0] | x.w[1] | x.w[2] | x.w[3]) == 0; }

inline void store_be64(CS_BYTE *dst, uint64_t v)
{
    v = __builtin_bswap64(v);
    std::memcpy(dst, &v, 8);
}

// The 64 bits of hi:lo that start k bytes (0..7) above the bottom of lo.
inline uint64_t bytes_above(uint64_t hi, uint64_t lo, unsigned k)
{
    return static_cast<uint64_t>(((static_cast<u128>(hi) << 64) | lo) >> (8 * k));
}

// Writes v big-endian into exactly n bytes at dst (n <= 32, v below
// 2^(8n)): whole words from the end, then the top bytes with one more word
// store that overlaps bytes already written with the same values.  A caller
// that knows n >= MinBytes skips the tests below it.
template <unsigned MinBytes = 1>
[[gnu::always_inline]] inline void store_be(const U256 &v, CS_BYTE *dst, unsigned n)
{
    if (MinBytes < 8 && n < 8) {
        for (unsigned i = 0; i < n; ++i)
            dst[i] = static_cast<CS_BYTE>(v.w[0] >> (8 * (n - 1 - i)));
        return;
    }
    store_be64(dst + n - 8, v.w[0]);
    if (MinBytes < 16 && n < 16)
        return store_be64(dst, bytes_above(v.w[1], v.w[0], n - 8));
    store_be64(dst + n - 16, v.w[1]);
    if (MinBytes < 24 && n < 24)
        return store_be64(dst, bytes_above(v.w[2], v.w[1], n - 16));
    store_be64(dst + n - 24, v.w[2]);
    if (n < 32)
        return store_be64(dst, bytes_above(v.w[3], v.w[2], n - 24));
    store_be64(dst, v.w[3]);
}

// Writes v as a result of shape out, when it lies below 10^out.prec: the
// sign byte (1 when negative, which the caller gives only for a value that
// is not zero) and exactly the record's magnitude bytes, nothing past them.
// MinPrec is a precision out.prec is known to reach.
template <int MinPrec = 1>
[[gnu::always_inline]] inline bool store(const U256 &v, bool negative, Shape out, CS_NUMERIC *r)
{
    if (!less(v, kPow.p[out.prec]))
        return false;
    store_be<Com__Nume_Prec_To_Len[MinPrec] - 1u>(v, r->array + 1, Com__Nume_Prec_To_Len[out.prec] - 1u);
    r->array[0] = negative ? 1 : 0;
    r->precision = static_cast<CS_BYTE>(out.prec);
    r->scale = static_cast<CS_BYTE>(out.scale);
    return true;
}

// The largest magnitude of each precision up to 39 that two words hold:
// 10^n - 1, or 2^128 - 1 where that is smaller.
struct TwoWordLimits {
    u128 max[kMaxWordPrec + 2];
};

constexpr TwoWordLimits make_two_word_limits()
{
    TwoWordLimits t{};
    for (int n = 0; n <= kMaxWordPrec + 1; ++n) {
        const U256 &p = kPow.p[n];
        t.max[n] = p.w[2] != 0 ? ~u128{0} : ((static_cast<u128>(p.w[1]) << 64) | p.w[0]) - 1;
    }
    return t;
}

inline constexpr TwoWordLimits kTwoWordMax = make_two_word_limits();

// Writes a two-word v as a result of shape out (precision at most 39) when
// it does not exceed the precision, as store() does; zero is positive.
[[gnu::always_inline]] inline bool store_two_words(u128 v, bool neg, Shape out, CS_NUMERIC *r)
{
    if (v > kTwoWordMax.max[out.prec])
        return false;
    store_be(widen(v), r->array + 1, Com__Nume_Prec_To_Len[out.prec] - 1u);
    r->array[0] = neg && v != 0 ? 1 : 0;
    r->precision = static_cast<CS_BYTE>(out.prec);
    r->scale = static_cast<CS_BYTE>(out.scale);
    return true;
}

// The largest precision whose magnitude fits one word.
inline constexpr int kMaxOneWordPrec = 19;

// Words a magnitude of precision p (1..38) needs.
constexpr int words_for(int p) { return p <= kMaxOneWordPrec ? 1 : 2; }

// The magnitude of a record of len bytes and W words, W = words_for(its
// precision): one load for one word, and for two words the low word ending at
// the value's last byte and the bytes after the sign byte shifted down.  Only
// bytes inside the record's array are read, whatever the precision.
template <int W>
[[gnu::always_inline]] inline void load_words(const CS_NUMERIC *n, unsigned len, uint64_t &hi, uint64_t &lo)
{
    if constexpr (W == 1) {
        lo = be64(n->array + 1) >> (8 * (9 - len));
        hi = 0;
    } else {
        lo = be64(n->array + len - 8);
        hi = be64(n->array + 1) >> (8 * (17 - len));
    }
}

template <int W> [[gnu::always_inline]] inline void load_words(const CS_NUMERIC *n, uint64_t &hi, uint64_t &lo)
{
    load_words<W>(n, Com__Nume_Prec_To_Len[n->precision], hi, lo);
}

// a + b, or a - b when subtract, for operands of one shape whose
// precision P the caller has matched; the sum has precision P + 1 and their
// scale.  With P fixed at compile time the loads, the limit and the stores
// take constant offsets.  Only a sum that carries out of two words, which no
// valid operands make, is declined for its size alone.
template <int P>
[[gnu::always_inline]] inline bool add_sub_at(const CS_NUMERIC *a, const CS_NUMERIC *b, CS_NUMERIC *r,
                                              bool subtract)
{
    static_assert(P >= 1 && P <= kMaxWordPrec);
    if (a->scale > P)
        return false;
    const Shape out{P + 1, a->scale};
    constexpr unsigned len = Com__Nume_Prec_To_Len[P];
    uint64_t x1, x0, y1, y0;
    load_words<words_for(P)>(a, len, x1, x0);
    load_words<words_for(P)>(b, len, y1, y0);
    const u128 x = join(x1, x0), y = join(y1, y0);
    const bool na = a->array[0] != 0;
    const bool nb = (b->array[0] != 0) != subtract;
    if (na == nb) {
        const u128 sum = x + y;
        return sum >= x && store_two_words(sum, na, out, r);
    }
    // Opposite signs: the larger magnitude keeps its sign.  A larger operand
    // beyond the result's precision is left to the byte kernel, which counts
    // its bytes.
    const bool x_larger = x >= y;
    if ((x_larger ? x : y) > kTwoWordMax.max[P + 1])
        return false;
    return store_two_words(x_larger ? x - y : y - x, x_larger ? na : nb, out, r);
}

// The product of a W1-word x and a W2-word y, schoolbook: each partial
// product plus the carries into its column fits 128 bits.
template <int W1, int W2> [[gnu::always_inline]] inline U256 product(uint64_t x1, uint64_t x0, uint64_t y1, uint64_t y0)
{
    const u128 p00 = static_cast<u128>(x0) * y0;
    if constexpr (W1 == 1 && W2 == 1)
        return U256{{static_cast<uint64_t>(p00), static_cast<uint64_t>(p00 >> 64), 0, 0}};
    const u128 t = static_cast<u128>(x0) * y1 + static_cast<uint64_t>(p00 >> 64);
    const u128 u = static_cast<u128>(x1) * y0 + static_cast<uint64_t>(t);
    const u128 v = static_cast<u128>(x1) * y1 + static_cast<uint64_t>(t >> 64) + static_cast<uint64_t>(u >> 64);
    return U256{{static_cast<uint64_t>(p00), static_cast<uint64_t>(u), static_cast<uint64_t>(v),
                 static_cast<uint64_t>(v >> 64)}};
}

// The sign rule of the byte kernel's product and quotient: the sign bytes
// themselves are compared.
inline bool product_sign(const CS_NUMERIC *a, const CS_NUMERIC *b) { return a->array[0] != b->array[0]; }

// a * b for a of W1 words and b of W2 words, both of at most 38 digits,
// which the caller has checked; with P not zero, both of precision P, which
// puts every load, the limit and the store at constant offsets.  The product
// keeps all their digits and one more, at the sum of the scales, as
// product_shape() gives for every such pair (a test walks them all); the
// short form keeps its clamps off this path.
template <int W1, int W2, int P = 0>
[[gnu::always_inline]] inline bool mul_at(const CS_NUMERIC *a, const CS_NUMERIC *b, CS_NUMERIC *r)
{
    if (a->scale > a->precision || b->scale > b->precision)
        return false;
    const Shape out{P ? 2 * P + 1 : a->precision + b->precision + 1, a->scale + b->scale};
    uint64_t x1, x0, y1, y0;
    load_words<W1>(a, Com__Nume_Prec_To_Len[P ? P : a->precision], x1, x0);
    load_words<W2>(b, Com__Nume_Prec_To_Len[P ? P : b->precision], y1, y0);
    // A product is zero only when an operand is.
    const bool negative = product_sign(a, b) && (x0 | x1) != 0 && (y0 | y1) != 0;
    constexpr int min_prec = P ? 2 * P + 1 : (W1 == 1 ? 1 : kMaxOneWordPrec + 1) + (W2 == 1 ? 1 : kMaxOneWordPrec + 1) + 1;
    return store<min_prec>(product<W1, W2>(x1, x0, y1, y0), negative, out, r);
}

// Division by an invariant divisor after Moeller and Granlund: the divisor
// is normalised (top bit set) and its reciprocal taken once, so that each
// quotient word costs two multiplications instead of a hardware divide.

// floor((2^128 - 1) / d) - 2^64 for a normalised d.
inline uint64_t reciprocal(uint64_t d) { return limbs::div_2by1(~d, ~uint64_t{0}, d); }

// The reciprocal of the normalised two-word divisor (d1 d0).
inline uint64_t reciprocal_3by2(uint64_t d1, uint64_t d0)
{
    uint64_t v = reciprocal(d1);
    uint64_t p = d1 * v + d0;
    if (p < d0) {
        --v;
        if (p >= d1) {
            --v;
            p -= d1;
        }
        p -= d1;
    }
    const u128 t = static_cast<u128>(v) * d0;
    const uint64_t t1 = static_cast<uint64_t>(t >> 64), t0 = static_cast<uint64_t>(t);
    p += t1;
    if (p < t1) {
        --v;
        if (p > d1 || (p == d1 && t0 >= d0))
            --v;
    }
    return v;
}

// (u1 u0) / d for u1 < d; the remainder replaces u1.
inline uint64_t div_2by1_preinv(uint64_t &u1, uint64_t u0, uint64_t d, uint64_t v)
{
    const u128 q = static_cast<u128>(v) * u1 + ((static_cast<u128>(u1) << 64) | u0);
    uint64_t q1 = static_cast<uint64_t>(q >> 64) + 1;
    const uint64_t q0 = static_cast<uint64_t>(q);
    uint64_t r = u0 - q1 * d;
    if (r > q0) {
        --q1;
        r += d;
    }
    if (r >= d) {
        ++q1;
        r -= d;
    }
    u1 = r;
    return q1;
}

// (r u0) / (d1 d0) for r < (d1 d0), r being two words; the remainder
// replaces r.
inline uint64_t div_3by2_preinv(u128 &r, uint64_t u0, uint64_t d1, uint64_t d0, uint64_t v)
{
    const u128 d = (static_cast<u128>(d1) << 64) | d0;
    const uint64_t u2 = static_cast<uint64_t>(r >> 64), u1 = static_cast<uint64_t>(r);
    const u128 q = static_cast<u128>(v) * u2 + r;
    uint64_t q1 = static_cast<uint64_t>(q >> 64);
    const uint64_t q0 = static_cast<uint64_t>(q);
    const uint64_t r1 = u1 - q1 * d1;
    u128 rem = ((static_cast<u128>(r1) << 64) | u0) - static_cast<u128>(d0) * q1 - d;
    ++q1;
    if (static_cast<uint64_t>(rem >> 64) >= q0) {
        --q1;
        rem += d;
    }
    if (rem >= d) {
        ++q1;
        rem -= d;
    }
    r = rem;
    return q1;
}

// hi:lo shifted left by s (0 <= s < 64), the top word.  The low word goes
// right in two steps, so that no shift reaches 64 and no branch is needed.
inline uint64_t funnel(uint64_t hi, uint64_t lo, int s) { return (hi << s) | ((lo >> 1) >> (63 - s)); }

// The numerator n shifted left by s (0..63) bits, in five words.
struct Shifted {
    uint64_t w[5];
};

inline Shifted shift_left(const U256 &n, int s)
{
    return Shifted{{n.w[0] << s, funnel(n.w[1], n.w[0], s), funnel(n.w[2], n.w[1], s), funnel(n.w[3], n.w[2], s),
                    funnel(0, n.w[3], s)}};
}

// n / d truncated for a one-word d, not zero.  Normalised, the top word of
// the numerator lies below d, so four steps give every quotient word.
inline U256 quotient(const U256 &n, uint64_t d)
{
    const int s = std::countl_zero(d);
    d <<= s;
    const Shifted nn = shift_left(n, s);
    const uint64_t v = reciprocal(d);
    uint64_t r = nn.w[4];
    U256 q;
    for (int j = 3; j >= 0; --j)
        q.w[j] = div_2by1_preinv(r, nn.w[j], d, v);
    return q;
}

// n / (d1 d0) truncated for d1 not zero.  Normalised, the top two words of
// the numerator lie below the divisor, so three steps give every quotient
// word; the quotient is below 2^192.
inline U256 quotient(const U256 &n, uint64_t d1, uint64_t d0)
{
    const int s = std::countl_zero(d1);
    d1 = funnel(d1, d0, s);
    d0 <<= s;
    const Shifted nn = shift_left(n, s);
    const uint64_t v = reciprocal_3by2(d1, d0);
    u128 r = join(nn.w[4], nn.w[3]);
    U256 q;
    q.w[3] = 0;
    for (int j = 2; j >= 0; --j)
        q.w[j] = div_3by2_preinv(r, nn.w[j], d1, d0, v);
    return q;
}

// x times 10^shift (0 <= shift <= 77) into n; false when that needs more
// than four words.  The power has as many words as its size asks, and each
// row of multiplications runs over those words alone.
inline bool scaled(uint64_t x1, uint64_t x0, int shift, U256 &n)
{
    const U256 &p = kPow.p[shift];
    if (shift <= kMaxWordPrec) {
        n = product<2, 2>(x1, x0, p.w[1], p.w[0]);
        return true;
    }
    // Powers up to 10^57 have three words.
    const bool four = p.w[3] != 0;
    u128 t = static_cast<u128>(x0) * p.w[0];
    const uint64_t r0 = static_cast<uint64_t>(t);
    t = static_cast<u128>(x0) * p.w[1] + static_cast<uint64_t>(t >> 64);
    uint64_t r1 = static_cast<uint64_t>(t);
    t = static_cast<u128>(x0) * p.w[2] + static_cast<uint64_t>(t >> 64);
    uint64_t r2 = static_cast<uint64_t>(t);
    uint64_t r3 = static_cast<uint64_t>(t >> 64), r4 = 0;
    if (four) {
        t = static_cast<u128>(x0) * p.w[3] + r3;
        r3 = static_cast<uint64_t>(t);
        r4 = static_cast<uint64_t>(t >> 64);
    }
    if (x1 == 0) {
        n = U256{{r0, r1, r2, r3}};
        return r4 == 0;
    }
    t = static_cast<u128>(x1) * p.w[0] + r1;
    r1 = static_cast<uint64_t>(t);
    t = static_cast<u128>(x1) * p.w[1] + r2 + static_cast<uint64_t>(t >> 64);
    r2 = static_cast<uint64_t>(t);
    t = static_cast<u128>(x1) * p.w[2] + r3 + static_cast<uint64_t>(t >> 64);
    r3 = static_cast<uint64_t>(t);
    t = r4 + (t >> 64);
    if (four)
        t += static_cast<u128>(x1) * p.w[3];
    n = U256{{r0, r1, r2, r3}};
    return t == 0;
}

// a / b truncated toward zero for a of W1 words and b of W2 words, both of
// at most 38 digits, which the caller has checked.  The dividend is multiplied by
// 10^(out.scale - s1 + s2) first, which must lie in 0..77.
template <int W1, int W2> [[gnu::always_inline]] inline bool div_at(const CS_NUMERIC *a, const CS_NUMERIC *b, CS_NUMERIC *r)
{
    if (a->scale > a->precision || b->scale > b->precision)
        return false;
    const Shape out = quotient_shape(a->precision, a->scale, b->scale);
    const int shift = out.scale - a->scale + b->scale;
    uint64_t x1, x0, d1, d0;
    load_words<W1>(a, x1, x0);
    load_words<W2>(b, d1, d0);
    U256 n;
    if ((d1 | d0) == 0 || shift < 0 || shift > kMaxPrec || !scaled(x1, x0, shift, n))
        return false;
    const U256 q = W2 == 1 || d1 == 0 ? quotient(n, d0) : quotient(n, d1, d0);
    return store(q, product_sign(a, b) && !is_zero(q), out, r);
}

} // namespace kes::numeric::words

#endif
