/*
** Magnitude arithmetic behind the exact numeric kernel.  Values travel as
** big-endian base-256 bytes; addition, subtraction and multiplication run on
** 64-bit limbs, which gives the results of byte-wise schoolbook arithmetic
** several times faster.  Division is Knuth's Algorithm D, one body for
** every digit width: bytes, where the kernel hands its quotient and remainder
** back in place, and 64-bit digits for the record operations.
*/
#ifndef KESCOMN_NUMERIC_LIMBS_H
#define KESCOMN_NUMERIC_LIMBS_H

#include <bit>
#include <cstdint>
#include <type_traits>

#include "kescomn/types.h"

namespace kes::numeric::limbs {

// Work values reach 67 bytes inside division (a dividend times 10^77).
inline constexpr int kWideBytes = 72;

// result = op1 + op2, or op1 - op2 (op1 >= op2) when subtract, magnitudes
// only, into result->len - 1 bytes; the sign byte is left alone.  1 when the
// sum does not fit, or when a non-zero byte of op1 lies beyond the result's
// reach in a subtraction.
int add_sub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, bool subtract);

// result = op1 * op2, magnitudes only; 1 when the product does not fit.
int mul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result);

// num / den on magnitudes.  The quotient and the remainder are written at
// the ends of qbuf and rbuf (kWideBytes + 1 bytes each), and q and r point
// at them as values: a zero sign byte and the significant digits, or len 0
// for zero.  The divisor must not be zero.
void divide(const __CONSTANT *num, const __CONSTANT *den, CS_BYTE *qbuf, CS_BYTE *rbuf, __CONSTANT *q,
            __CONSTANT *r);

// (hi * 2^64 + lo) / d for hi < d, which a single hardware divide gives
// without the generic 128-bit division routine.
inline uint64_t div_2by1(uint64_t hi, uint64_t lo, uint64_t d)
{
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
    uint64_t q, r;
    __asm__("divq %4" : "=a"(q), "=d"(r) : "a"(lo), "d"(hi), "rm"(d));
    return q;
#else
    return static_cast<uint64_t>(((static_cast<unsigned __int128>(hi) << 64) | lo) / d);
#endif
}

// Knuth's Algorithm D in place on digits, most significant first.  u[0..n]
// is the dividend with u[0] == 0, v[0..m-1] the divisor with v[0] != 0 and
// 2 <= m <= n.  The divisor is normalised only virtually: the estimate uses
// the top digits as they would be after the shift, the multiply-subtract the
// digits as they are.  Afterwards u[0..n-m] holds the quotient digits and
// u[n-m+1..n] the remainder.  Returns how often the add-back step ran.
template <class D> int knuth_d(D *u, int n, const D *v, int m)
{
    static_assert(std::is_same_v<D, uint8_t> || std::is_same_v<D, uint32_t> || std::is_same_v<D, uint64_t>);
    // W holds two digits, S a signed digit difference.
    using W = std::conditional_t<sizeof(D) == 1, uint32_t,
                                 std::conditional_t<sizeof(D) == 4, uint64_t, unsigned __int128>>;
    using S = std::conditional_t<sizeof(D) == 1, int32_t, std::conditional_t<sizeof(D) == 4, int64_t, __int128>>;
    constexpr int bits = 8 * sizeof(D);
    constexpr W mask = (W{1} << bits) - 1;
    constexpr W base = W{1} << bits;

    const int s = std::countl_zero(v[0]);
    auto norm = [&](const D *x, int k, int last) -> W {
        const W hi = x[k];
        const W lo = k + 1 <= last ? x[k + 1] : 0;
        return ((hi << s) | (lo >> (bits - s))) & mask;
    };
    const W v1 = norm(v, 0, m - 1);
    const W v2 = norm(v, 1, m - 1);

    int addbacks = 0;
    for (int j = 0; j <= n - m; ++j) {
        const W u0 = norm(u, j, n);
        const W u1 = norm(u, j + 1, n);
        const W u2 = norm(u, j + 2, n);
        const W top = (u0 << bits) | u1;
        // The window stays below base * v, so u0 <= v1; below equality the
        // trial digit fits one digit and one hardware divide gives it.
        W qhat;
        if (u0 >= v1)
            qhat = mask;
        else if constexpr (sizeof(D) == 8)
            qhat = div_2by1(static_cast<uint64_t>(u0), static_cast<uint64_t>(u1), static_cast<uint64_t>(v1));
        else
            qhat = top / v1;
        W rhat = top - qhat * v1;
        while (rhat < base && qhat * v2 > ((rhat << bits) | u2)) {
            --qhat;
            rhat += v1;
        }

        // Multiply and subtract across the m + 1 digits of the window.
        W carry = 0;
        S borrow = 0;
        for (int i = m - 1; i >= 0; --i) {
            const W p = qhat * v[i] + carry;
            carry = p >> bits;
            const S t = static_cast<S>(u[j + 1 + i]) - static_cast<S>(p & mask) - borrow;
            u[j + 1 + i] = static_cast<D>(t);
            borrow = t < 0;
        }
        if (static_cast<S>(u[j]) - static_cast<S>(carry) - borrow < 0) {
            // The trial digit was one too large: add the divisor back.
            --qhat;
            ++addbacks;
            W c = 0;
            for (int i = m - 1; i >= 0; --i) {
                const W sum = W{u[j + 1 + i]} + v[i] + c;
                u[j + 1 + i] = static_cast<D>(sum);
                c = sum >> bits;
            }
        }
        u[j] = static_cast<D>(qhat);
    }
    return addbacks;
}

} // namespace kes::numeric::limbs

#endif
