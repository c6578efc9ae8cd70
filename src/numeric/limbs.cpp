// Magnitude arithmetic on 64-bit limbs, and division on 64-bit digits.
#include "numeric/limbs.h"

#include <algorithm>
#include <cstring>

namespace kes::numeric::limbs {

namespace {

constexpr int kLimbs = kWideBytes / 8;

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

// The magnitude bytes of a value (after its sign byte).
struct Run {
    const CS_BYTE *p;
    int n;
};
Run run(const __CONSTANT *v)
{
    const int n = std::min(v->len > 1 ? v->len - 1 : 0, kWideBytes); // longer runs are not values
    return {v->len > 1 ? v->value + v->len - n : v->value, n};
}

// The big-endian number in the first n bytes at p.
uint64_t be_partial(const CS_BYTE *p, int n)
{
    uint64_t v = 0;
    for (int k = 0; k < n; ++k)
        v = (v << 8) | p[k];
    return v;
}

// Whole limbs load straight from the end of the run; only the top one, when
// partial, goes byte by byte (bytes before the run may not be readable).
void load(const __CONSTANT *v, Wide &out)
{
    const Run r = run(v);
    int n = 0;
    int end = r.n;
    for (; end >= 8; end -= 8)
        out.w[n++] = be64(r.p + end - 8);
    if (end > 0)
        out.w[n++] = be_partial(r.p, end);
    while (n > 0 && out.w[n - 1] == 0)
        --n;
    out.n = n;
}

int significant_bytes(const Wide &x)
{
    int n = x.n;
    while (n > 0 && x.w[n - 1] == 0)
        --n;
    return n == 0 ? 0 : 8 * (n - 1) + (71 - std::countl_zero(x.w[n - 1])) / 8;
}

// Writes the value big-endian into nbytes at dst; false, with dst left
// alone, when it needs more.
bool store(const Wide &x, CS_BYTE *dst, int nbytes)
{
    if (significant_bytes(x) > nbytes)
        return false;
    int pos = nbytes;
    for (int i = 0; i < x.n && pos > 0; ++i) {
        uint64_t limb = x.w[i];
        if (pos >= 8) {
            limb = __builtin_bswap64(limb);
            std::memcpy(dst + pos - 8, &limb, 8);
            pos -= 8;
        } else {
            for (; pos > 0; --pos, limb >>= 8) // what is left of the limb is zero
                dst[pos - 1] = static_cast<CS_BYTE>(limb);
        }
    }
    while (pos > 0)
        dst[--pos] = 0;
    return true;
}

int reach(const __CONSTANT *result) { return result->len > 1 ? result->len - 1 : 0; }

CS_BYTE *mag_start(__CONSTANT *result) { return result->len > 1 ? result->value + 1 : result->value; }

// 64-bit digits, most significant first, of a run; leading zero digits dropped.
int to_digits(Run r, uint64_t *d)
{
    const int n = (r.n + 7) / 8;
    const int top = r.n - 8 * (n - 1); // bytes in the first digit, 1 to 8
    int k = 0;
    for (int i = 0; i < n; ++i) {
        const uint64_t v = i == 0 ? be_partial(r.p, top) : be64(r.p + top + 8 * (i - 1));
        if (k > 0 || v != 0)
            d[k++] = v;
    }
    return k;
}

// Digits back to big-endian bytes at the end of buf (kWideBytes + 1 bytes),
// behind a zero sign byte; value gets the run, len 0 when it is zero.
void from_digits(const uint64_t *d, int n, CS_BYTE *buf, __CONSTANT *value)
{
    while (n > 0 && d[0] == 0) {
        ++d;
        --n;
    }
    CS_BYTE *start = buf + kWideBytes - 8 * n;
    for (int i = 0; i < n; ++i) {
        const uint64_t v = __builtin_bswap64(d[i]);
        std::memcpy(start + 1 + 8 * i, &v, 8);
    }
    start[0] = 0;
    value->value = start;
    value->len = n == 0 ? 0 : 8 * n + 1;
    value->maxlen = value->len;
}

} // namespace

int add_sub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, bool subtract)
{
    Wide a, b;
    load(op1, a);
    load(op2, b);
    // Bytes of op1 beyond the result's reach count even when the difference
    // would fit.
    if (subtract && significant_bytes(a) > reach(result))
        return 1;
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

void divide(const __CONSTANT *num, const __CONSTANT *den, CS_BYTE *qbuf, CS_BYTE *rbuf, __CONSTANT *q,
            __CONSTANT *r)
{
    uint64_t u[kLimbs + 1], v[kLimbs]{};
    const int n = to_digits(run(num), u + 1);
    const int m = to_digits(run(den), v);
    u[0] = 0;
    if (m > n) { // the divisor is larger: no quotient, the dividend remains
        from_digits(u, 0, qbuf, q);
        from_digits(u + 1, n, rbuf, r);
        return;
    }
    if (m == 1) {
        uint64_t rem = 0;
        for (int j = 0; j < n; ++j) {
            u[j] = div_2by1(rem, u[j + 1], v[0]);
            rem = u[j + 1] - u[j] * v[0];
        }
        u[n] = rem;
    } else {
        knuth_d(u, n, v, m);
    }
    from_digits(u, n - m + 1, qbuf, q);
    from_digits(u + n - m + 1, m, rbuf, r);
}

} // namespace kes::numeric::limbs
