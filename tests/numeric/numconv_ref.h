// Reference arithmetic for the numeric conversion tests: values as GMP
// integers at a scale, their canonical text, and the byte form of a record,
// all made without the library.
#ifndef KESCOMN_TESTS_NUMERIC_NUMCONV_REF_H
#define KESCOMN_TESTS_NUMERIC_NUMCONV_REF_H

#include <gmp.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "kescomn/types.h"

namespace kes::test::ref {

struct Z {
    mpz_t v;
    Z() { mpz_init(v); }
    explicit Z(const std::string &dec) { mpz_init_set_str(v, dec.c_str(), 10); }
    ~Z() { mpz_clear(v); }
    Z(const Z &o) { mpz_init_set(v, o.v); }
    Z &operator=(const Z &o)
    {
        mpz_set(v, o.v);
        return *this;
    }
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
    std::string str() const
    {
        std::vector<char> buf(mpz_sizeinbase(v, 10) + 2);
        mpz_get_str(buf.data(), 10, v);
        return buf.data();
    }
};

inline int sgn(const Z &z) { return mpz_sgn(z.v); }

inline bool sanitized()
{
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
    return true;
#endif
#endif
    return false;
}

// Cases of a randomised run: 100000, fewer under sanitizers, or the
// environment's KES_NUMCONV_CASES.
inline long cases()
{
    if (const char *s = std::getenv("KES_NUMCONV_CASES"))
        return std::strtol(s, nullptr, 10);
    return sanitized() ? 5000 : 100000;
}

// Bytes of a value of precision p: the bytes of 10^p - 1, plus the sign.
inline int len_of(int p)
{
    Z v;
    mpz_ui_pow_ui(v, 10, static_cast<unsigned long>(p));
    mpz_sub_ui(v, v, 1);
    return static_cast<int>(mpz_sizeinbase(v, 256)) + 1;
}

// A signed integer of up to `digits` decimal digits, lengths spread evenly.
inline Z random_value(std::mt19937_64 &rng, int digits)
{
    const int n = std::uniform_int_distribution<int>(0, digits)(rng);
    std::string s = "0";
    for (int i = 0; i < n; ++i)
        s += static_cast<char>('0' + rng() % 10);
    Z z(s);
    if (rng() & 1)
        mpz_neg(z, z);
    return z;
}

// The library's fixed text of unscaled value u at scale s: "-", integer
// digits (at least one), "." and s decimals; zero has no sign.
inline std::string fixed_text(const Z &u, int s)
{
    Z a;
    mpz_abs(a, u);
    std::string d = a.str();
    if (static_cast<int>(d.size()) <= s)
        d.insert(0, static_cast<size_t>(s + 1 - static_cast<int>(d.size())), '0');
    if (s > 0)
        d.insert(d.size() - static_cast<size_t>(s), ".");
    return (sgn(u) < 0 ? "-" : "") + d;
}

// The record bytes of u: sign byte and big-endian magnitude in len bytes;
// false when it does not fit.
inline bool record_bytes(const Z &u, int len, CS_BYTE *out)
{
    std::memset(out, 0, static_cast<size_t>(len));
    Z a;
    mpz_abs(a, u);
    size_t n = 0;
    CS_BYTE tmp[80];
    mpz_export(tmp, &n, 1, 1, 1, 0, a);
    if (static_cast<int>(n) > len - 1)
        return false;
    std::memcpy(out + len - n, tmp, n);
    out[0] = sgn(u) < 0 ? 1 : 0;
    return true;
}

// The value of record bytes, sign honoured.
inline Z from_bytes(const CS_BYTE *p, int len)
{
    Z z;
    if (len > 1)
        mpz_import(z, static_cast<size_t>(len - 1), 1, 1, 1, 0, p + 1);
    if (len > 0 && p[0] != 0)
        mpz_neg(z, z);
    return z;
}

// u / 10^k rounded half away from zero (k > 0), or u * 10^-k.
inline Z shift_round(const Z &u, int k)
{
    Z r, p;
    if (k <= 0) {
        mpz_ui_pow_ui(p, 10, static_cast<unsigned long>(-k));
        mpz_mul(r, u, p);
        return r;
    }
    mpz_ui_pow_ui(p, 10, static_cast<unsigned long>(k));
    Z q, rem, twice;
    mpz_tdiv_qr(q, rem, u, p);
    mpz_abs(rem, rem);
    mpz_mul_ui(twice, rem, 2);
    if (mpz_cmp(twice, p) >= 0)
        sgn(u) < 0 ? mpz_sub_ui(q, q, 1) : mpz_add_ui(q, q, 1);
    return q;
}

// Digits of |u| exceed p.
inline bool exceeds(const Z &u, int p)
{
    Z a, lim;
    mpz_abs(a, u);
    mpz_ui_pow_ui(lim, 10, static_cast<unsigned long>(p));
    return mpz_cmp(a, lim) >= 0;
}

} // namespace kes::test::ref

#endif
