// Reference arithmetic for the numeric conversion tests, made without the
// library: GMP integers read as unscaled values, their fixed text and the
// byte forms of a record and of the integer types.
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
    Z(const Z &o) { mpz_init_set(v, o.v); }
    Z &operator=(const Z &) = delete;
    ~Z() { mpz_clear(v); }
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
    std::string str() const
    {
        std::vector<char> buf(mpz_sizeinbase(v, 10) + 2);
        return mpz_get_str(buf.data(), 10, v);
    }
};

inline int sgn(const Z &z) { return mpz_sgn(z.v); }

inline Z ten_to(int k)
{
    Z p;
    mpz_ui_pow_ui(p, 10, static_cast<unsigned long>(k));
    return p;
}

inline long env_or(const char *name, long dflt)
{
    const char *s = std::getenv(name);
    return s ? std::strtol(s, nullptr, 10) : dflt;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true; // fewer cases under the sanitizers
#else
constexpr bool kSanitized = false;
#endif

// Cases of a randomised run: KES_NUMCONV_CASES, else 100000 (5000 sanitized).
inline long cases() { return env_or("KES_NUMCONV_CASES", kSanitized ? 5000 : 100000); }

// Bytes of a value of precision p: those of 10^p - 1, plus the sign byte.
inline int len_of(int p)
{
    Z v = ten_to(p);
    mpz_sub_ui(v, v, 1);
    return static_cast<int>(mpz_sizeinbase(v, 256)) + 1;
}

// A signed integer of 0..digits decimal digits, lengths spread evenly.
inline Z random_value(std::mt19937_64 &rng, int digits)
{
    std::string s = (rng() & 1) ? "-0" : "0";
    for (int n = std::uniform_int_distribution<int>(0, digits)(rng); n > 0; --n)
        s += static_cast<char>('0' + rng() % 10);
    return Z(s);
}

// Fixed text of u at scale s: "-" (not for zero), at least one integer
// digit, and "." with s decimals when s > 0.
inline std::string fixed_text(const Z &u, int s)
{
    std::string d = u.str();
    if (d[0] == '-')
        d.erase(0, 1);
    if (static_cast<int>(d.size()) <= s)
        d.insert(0, static_cast<size_t>(s + 1) - d.size(), '0');
    if (s > 0)
        d.insert(d.size() - static_cast<size_t>(s), ".");
    return (sgn(u) < 0 ? "-" : "") + d;
}

// Record bytes of u in len bytes: sign byte, big-endian magnitude.
inline bool record_bytes(const Z &u, int len, CS_BYTE *out)
{
    std::memset(out, 0, static_cast<size_t>(len));
    CS_BYTE tmp[80];
    size_t n = 0;
    mpz_export(tmp, &n, 1, 1, 1, 0, u.v); // the magnitude only
    if (static_cast<int>(n) > len - 1)
        return false;
    std::memcpy(out + len - n, tmp, n);
    out[0] = sgn(u) < 0 ? 1 : 0;
    return true;
}

inline Z from_bytes(const CS_BYTE *p, int len)
{
    Z z;
    mpz_import(z, static_cast<size_t>(len - 1), 1, 1, 1, 0, p + 1);
    if (p[0] != 0)
        mpz_neg(z, z);
    return z;
}

// u / 10^k rounded half away from zero when k > 0, else u * 10^-k.
inline Z shift_round(const Z &u, int k)
{
    Z q, rem, p = ten_to(k > 0 ? k : -k);
    if (k <= 0) {
        mpz_mul(q, u, p);
        return q;
    }
    mpz_tdiv_qr(q, rem, u, p);
    mpz_abs(rem, rem);
    mpz_mul_ui(rem, rem, 2);
    if (mpz_cmp(rem, p) >= 0)
        sgn(u) < 0 ? mpz_sub_ui(q, q, 1) : mpz_add_ui(q, q, 1);
    return q;
}

// |u| has more than p digits.
inline bool exceeds(const Z &u, int p) { return mpz_cmpabs(u.v, ten_to(p).v) >= 0; }

// An integer destination of the given type, widened.
inline long long int_at(int type, const CS_BYTE *b)
{
    switch (type) {
    case CS_TINYINT_TYPE: return b[0];
    case CS_SMALLINT_TYPE: { CS_SMALLINT v; std::memcpy(&v, b, 2); return v; }
    case CS_USMALLINT_TYPE: { CS_USMALLINT v; std::memcpy(&v, b, 2); return v; }
    case CS_INT_TYPE: { CS_INT v; std::memcpy(&v, b, 4); return v; }
    case CS_UINT_TYPE: { CS_UINT v; std::memcpy(&v, b, 4); return v; }
    default: { long long v; std::memcpy(&v, b, 8); return v; }
    }
}

} // namespace kes::test::ref

#endif
