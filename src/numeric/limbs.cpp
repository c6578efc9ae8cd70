// Magnitude arithmetic on 64-bit limbs, and Algorithm D on bytes.
#include "numeric/limbs.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace kes::numeric::limbs {

namespace {

// Work values reach 67 bytes inside division (a dividend times 10^77).
constexpr int kLimbs = 9;

// A magnitude as little-endian 64-bit limbs; n limbs are significant.
struct Wide {
    uint64_t w[2 * kLimbs];
    int n;
};

uint64_t be64(const CS_BYTE *p)
{
    uint64_t v;
    std::memcpy(&v, p, 8);
    return __builtin_bswap64(v);
}

// The magnitude bytes of v (after the sign byte), leading zeros skipped.
void load(const __CONSTANT *v, Wide &out)
{
    const CS_BYTE *p = v->len > 1 ? v->value + 1 : v->value;
    int nb = v->len > 1 ? v->len - 1 : 0;
    while (nb > 0 && *p == 0) {
        ++p;
        --nb;
    }
    nb = std::min(nb, 8 * kLimbs); // longer runs are not values of this type
    out.n = (nb + 7) / 8;
    int i = 0;
    for (; 8 * (i + 1) <= nb; ++i)
        out.w[i] = be64(p + nb - 8 * (i + 1));
    if (i < out.n) {
        uint64_t top = 0;
        for (int k = 0; k < nb - 8 * i; ++k)
            top = (top << 8) | p[k];
        out.w[i] = top;
    }
}

// Writes the low nbytes of the value big-endian at dst; false when a
// non-zero byte does not fit.
bool store(const Wide &x, CS_BYTE *dst, int nbytes)
{
    int n = x.n;
    while (n > 0 && x.w[n - 1] == 0)
        --n;
    int i = 0;
    for (; i < n && 8 * (i + 1) <= nbytes; ++i) {
        const uint64_t be = __builtin_bswap64(x.w[i]);
        std::memcpy(dst + nbytes - 8 * (i + 1), &be, 8);
    }
    int written = 8 * i;
    if (i < n) {
        uint64_t limb = x.w[i];
        for (; written < nbytes; ++written, limb >>= 8)
            dst[nbytes - 1 - written] = static_cast<CS_BYTE>(limb);
        if (limb != 0 || i + 1 < n)
            return false;
    }
    if (written < nbytes)
        std::memset(dst, 0, static_cast<size_t>(nbytes - written));
    return true;
}

int significant_bytes(const Wide &x)
{
    int n = x.n;
    while (n > 0 && x.w[n - 1] == 0)
        --n;
    return n == 0 ? 0 : 8 * (n - 1) + (71 - std::countl_zero(x.w[n - 1])) / 8;
}

int reach(const __CONSTANT *result) { return result->len > 1 ? result->len - 1 : 0; }

CS_BYTE *mag_start(__CONSTANT *result) { return result->len > 1 ? result->value + 1 : result->value; }

} // namespace

int add_sub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, bool subtract)
{
    Wide a, b;
    load(op1, a);
    load(op2, b);
    Wide r;
    r.n = std::max(a.n, b.n) + 1;
    uint64_t carry = 0;
    for (int i = 0; i < r.n; ++i) {
        const uint64_t x = i < a.n ? a.w[i] : 0;
        const uint64_t y = i < b.n ? b.w[i] : 0;
        unsigned long long out;
        bool c1, c2;
        if (subtract) {
            c1 = __builtin_usubll_overflow(x, y, &out);
            c2 = __builtin_usubll_overflow(out, carry, &out);
        } else {
            c1 = __builtin_uaddll_overflow(x, y, &out);
            c2 = __builtin_uaddll_overflow(out, carry, &out);
        }
        carry = c1 || c2;
        r.w[i] = out;
    }
    if (subtract) {
        // Bytes of op1 beyond the result's reach count even when the
        // difference would fit.
        if (significant_bytes(a) > reach(result))
            return 1;
    }
    return store(r, mag_start(result), reach(result)) ? 0 : 1;
}

int mul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result)
{
    Wide a, b;
    load(op1, a);
    load(op2, b);
    Wide r;
    r.n = a.n + b.n;
    std::fill(r.w, r.w + r.n, 0);
    for (int i = 0; i < a.n; ++i) {
        uint64_t carry = 0;
        for (int j = 0; j < b.n; ++j) {
            const unsigned __int128 t = static_cast<unsigned __int128>(a.w[i]) * b.w[j] + r.w[i + j] + carry;
            r.w[i + j] = static_cast<uint64_t>(t);
            carry = static_cast<uint64_t>(t >> 64);
        }
        r.w[i + b.n] = carry;
    }
    return store(r, mag_start(result), reach(result)) ? 0 : 1;
}

int knuth_d(CS_BYTE *u, int n, const CS_BYTE *v, int m)
{
    const int s = std::countl_zero(v[0]);
    // Digit k of the dividend as it would be after normalisation.
    auto norm = [&](int k) -> unsigned {
        const unsigned hi = u[k];
        const unsigned lo = k + 1 <= n ? u[k + 1] : 0;
        return ((hi << s) | (lo >> (8 - s))) & 0xFFu;
    };
    const unsigned v1 = ((unsigned{v[0]} << s) | (unsigned{v[1]} >> (8 - s))) & 0xFFu;
    const unsigned v2 = ((unsigned{v[1]} << s) | (m > 2 ? unsigned{v[2]} >> (8 - s) : 0u)) & 0xFFu;

    int addbacks = 0;
    for (int j = 0; j <= n - m; ++j) {
        const unsigned u0 = norm(j);
        const unsigned u1 = norm(j + 1);
        const unsigned u2 = norm(j + 2);
        const unsigned top = (u0 << 8) | u1;
        unsigned qhat = u0 == v1 ? 255u : top / v1;
        unsigned rhat = top - qhat * v1;
        while (rhat < 256 && qhat * v2 > ((rhat << 8) | u2)) {
            --qhat;
            rhat += v1;
        }

        // Multiply and subtract across the m + 1 bytes of the window.
        unsigned carry = 0;
        int borrow = 0;
        for (int i = m - 1; i >= 0; --i) {
            const unsigned p = qhat * v[i] + carry;
            carry = p >> 8;
            const int t = int{u[j + 1 + i]} - static_cast<int>(p & 0xFFu) - borrow;
            u[j + 1 + i] = static_cast<CS_BYTE>(t);
            borrow = t < 0;
        }
        const int t = int{u[j]} - static_cast<int>(carry) - borrow;
        if (t < 0) {
            // The trial digit was one too large: add the divisor back.
            --qhat;
            ++addbacks;
            unsigned c = 0;
            for (int i = m - 1; i >= 0; --i) {
                const unsigned sum = unsigned{u[j + 1 + i]} + v[i] + c;
                u[j + 1 + i] = static_cast<CS_BYTE>(sum);
                c = sum >> 8;
            }
        }
        u[j] = static_cast<CS_BYTE>(qhat);
    }
    return addbacks;
}

} // namespace kes::numeric::limbs
