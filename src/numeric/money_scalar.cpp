// Money and the other scalars: the integer and float kernels, and the
// integer rows' money members of the conversion matrix (plus the server
// layer's bit to money).
#include <immintrin.h>

#include <type_traits>

#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kescomn/money.h"
#include "numeric/mny.h"

namespace {

using kes::conv::load;
using kes::conv::store;
using kes::money::set;
using kes::money::value;

// ---- integers -----------------------------------------------------------------

// The sign of the money value decides the direction, not the quotient: -0.5
// rounds to -1 although its quotient is 0.
int64_t rounded_units(const CS_MONEY &m)
{
    CS_MONEY q = m;
    const int remainder = com__mnydown(&q, 10000);
    const int64_t v = value(q);
    if (remainder <= 4999)
        return v;
    return value(m) < 0 ? v - 1 : v + 1;
}

// 1 when the money value misses CS_MONEY4 (its limit is stored), else 0.
int narrow_status(CS_MONEY &wide, CS_MONEY4 *m4p) { return com__mnytomny4(&wide, m4p) < 0 ? 1 : 0; }

// ---- floats --------------------------------------------------------------------

constexpr double kHighUnit = 429496.7296; // 2^32 / 10000: one unit of mnyhigh

double money_to_double(const CS_MONEY &m)
{
    return static_cast<double>(m.mnylow) / 10000.0 + kHighUnit * m.mnyhigh;
}

inline int32_t machine_trunc32(double v) { return _mm_cvttsd_si32(_mm_set_sd(v)); }

// 8, or -1 beyond the range; dest is cleared first.
int double_to_money(double v, CS_MONEY &dest)
{
    set(dest, 0);
    const bool negative = v < 0;
    double mag = (negative ? -v : v) + 5e-5; // half away from zero
    constexpr double limit = 922337203685477.6;
    if (mag > limit)
        return -1;
    if (mag == limit) {
        set(dest, INT64_MAX);
    } else {
        const int32_t high = machine_trunc32(mag / kHighUnit);
        mag = (mag - high * kHighUnit) * 10000.0;
        constexpr double two31 = 2147483648.0;
        dest.mnyhigh = high;
        dest.mnylow = mag >= two31 ? static_cast<uint32_t>(machine_trunc32(mag - two31)) + 0x80000000U
                                   : static_cast<uint32_t>(machine_trunc32(mag));
    }
    if (negative && com__mnyminus(&dest, &dest) != 0)
        return -1;
    return 8;
}

} // namespace

extern "C" {

int com__inttomny(CS_MONEY *mp, CS_INT *ip)
{
    set(*mp, *ip);
    return com__mnyscale(mp, 10000, 0);
}

int com__int8tomny(CS_MONEY *mp, CS_BIGINT *ip)
{
    set(*mp, *ip);
    return com__mnyscale(mp, 10000, 0);
}

int com__uinttomny(CS_MONEY *mp, CS_UINT *ip)
{
    CS_UBIGINT wide = *ip;
    return com__uint8tomny(mp, &wide);
}

// A value with the top bit set is clamped to the largest signed value first,
// so that it overflows in the scaling.
int com__uint8tomny(CS_MONEY *mp, CS_UBIGINT *ip)
{
    set(*mp, *ip >> 63 ? INT64_MAX : static_cast<int64_t>(*ip));
    return com__mnyscale(mp, 10000, 0);
}

int com__inttomny4(CS_MONEY4 *m4p, CS_INT *ip)
{
    CS_MONEY wide;
    (void)com__inttomny(&wide, ip);
    return narrow_status(wide, m4p);
}

int com__int8tomny4(CS_MONEY4 *m4p, CS_BIGINT *ip)
{
    CS_MONEY wide; // a failed scaling leaves the unscaled value, far outside CS_MONEY4
    (void)com__int8tomny(&wide, ip);
    return narrow_status(wide, m4p);
}

int com__uinttomny4(CS_MONEY4 *m4p, CS_UINT *ip)
{
    CS_MONEY wide;
    (void)com__uinttomny(&wide, ip);
    return narrow_status(wide, m4p);
}

int com__uint8tomny4(CS_MONEY4 *m4p, CS_UBIGINT *ip)
{
    CS_MONEY wide;
    (void)com__uint8tomny(&wide, ip);
    return narrow_status(wide, m4p);
}

int com__mnytoint(CS_MONEY *mp, CS_INT *ip)
{
    const int64_t v = rounded_units(*mp);
    if (v > INT32_MAX || v < INT32_MIN) {
        *ip = v < 0 ? INT32_MIN : INT32_MAX;
        return 1;
    }
    *ip = static_cast<CS_INT>(v);
    return 0;
}

int com__mnytoint8(CS_MONEY *mp, CS_BIGINT *ip)
{
    *ip = rounded_units(*mp);
    return 0;
}

int com__mnytouint(CS_MONEY *mp, CS_UINT *ip)
{
    if (mp->mnyhigh < 0)
        return 1;
    const int64_t v = rounded_units(*mp);
    if (v >> 32 != 0) {
        *ip = UINT32_MAX;
        return 1;
    }
    *ip = static_cast<CS_UINT>(v);
    return 0;
}

int com__mnytouint8(CS_MONEY *mp, CS_UBIGINT *ip)
{
    if (mp->mnyhigh < 0)
        return 1;
    *ip = static_cast<CS_UBIGINT>(rounded_units(*mp));
    return 0;
}

int com__mny4toint(CS_MONEY4 *m4p, CS_INT *ip)
{
    CS_MONEY wide;
    com__mny4tomny(m4p, &wide);
    return com__mnytoint(&wide, ip);
}

int com__mny4toint8(CS_MONEY4 *m4p, CS_BIGINT *ip)
{
    CS_MONEY wide;
    com__mny4tomny(m4p, &wide);
    return com__mnytoint8(&wide, ip);
}

int com__mny4touint(CS_MONEY4 *m4p, CS_UINT *ip)
{
    CS_MONEY wide;
    com__mny4tomny(m4p, &wide);
    return com__mnytouint(&wide, ip);
}

int com__mny4touint8(CS_MONEY4 *m4p, CS_UBIGINT *ip)
{
    CS_MONEY wide;
    com__mny4tomny(m4p, &wide);
    return com__mnytouint8(&wide, ip);
}

int com__mnytoflt8(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style)
{
    store<double>(dest, money_to_double(load<CS_MONEY>(src)));
    return 8;
}

int com__mnytoflt4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style)
{
    store<float>(dest, static_cast<float>(money_to_double(load<CS_MONEY>(src))));
    return 4;
}

int com__mny4toflt8(CS_VOID *src, CS_VOID *dest)
{
    store<double>(dest, load<CS_INT>(src) / 10000.0);
    return 8;
}

int com__mny4toflt4(CS_VOID *src, CS_VOID *dest)
{
    store<float>(dest, static_cast<float>(load<CS_INT>(src) / 10000.0));
    return 4;
}

int com__flt8tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style)
{
    CS_MONEY m{};
    int result = 8;
    if (src != nullptr && srclen != 0)
        result = double_to_money(load<double>(src), m);
    store<CS_MONEY>(dest, m);
    return result;
}

// A float to CS_MONEY4 goes through CS_MONEY with the wide kernel, then narrows.
static int float_to_money4(int (*to_money)(CS_VOID *, CS_INT, CS_VOID *, CS_INT, CS_INT), CS_VOID *src,
                           CS_INT srclen, CS_VOID *dest, CS_INT style)
{
    store<CS_INT>(dest, 0);
    CS_MONEY wide;
    if (to_money(src, srclen, &wide, 8, style) < 0)
        return -1;
    CS_MONEY4 narrow;
    const int result = com__mnytomny4(&wide, &narrow);
    store<CS_MONEY4>(dest, narrow);
    return result;
}

int com__flt4tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style)
{
    CS_MONEY m{};
    int result = 8;
    if (src != nullptr && srclen != 0)
        result = double_to_money(load<float>(src), m);
    store<CS_MONEY>(dest, m);
    return result;
}

int com__flt8tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style)
{
    return float_to_money4(com__flt8tomny, src, srclen, dest, style);
}

int com__flt4tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style)
{
    return float_to_money4(com__flt4tomny, src, srclen, dest, style);
}

} // extern "C"
