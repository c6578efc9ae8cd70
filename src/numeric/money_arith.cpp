// Money arithmetic: the com__mny* kernels and their comn_ (result code) and
// com_ (raw status) entries.  Everything runs on machine integers: a product
// of two magnitudes is below 2^126 and a scaled dividend below 2^77, so
// 128-bit arithmetic holds every intermediate exactly.
#include "errors/assert.h"
#include "kescomn/money.h"
#include "numeric/exctnume.h"
#include "numeric/mny.h"

namespace {

using kes::money::magnitude;
using kes::money::set;
using kes::money::value;

constexpr int64_t kMaxMoney = INT64_MAX;
constexpr int64_t kMinMoney = INT64_MIN;

using u128 = unsigned __int128;

// Stores the magnitude mag with its sign as money.  False, and the result
// left as it was, when it does not fit: more than 63 bits, save 2^63 when
// negative.
bool store_signed(u128 mag, bool negative, CS_MONEY &out)
{
    if (mag <= static_cast<u128>(kMaxMoney))
        set(out, negative ? -static_cast<int64_t>(mag) : static_cast<int64_t>(mag));
    else if (negative && mag == static_cast<u128>(kMaxMoney) + 1)
        set(out, kMinMoney);
    else
        return false;
    return true;
}

// ---- result mapping ------------------------------------------------------------

CS_RETCODE mapped(int status)
{
    switch (status) {
    case kes::numeric::kOverflow:
    case kes::numeric::kLostDigits:
        return KES_TRACE(CS_EOVERFLOW);
    case kes::numeric::kMalformed:
        return KES_TRACE(CS_ESYNTAX);
    case kes::numeric::kDivZero:
        return KES_TRACE(CS_EDIVZERO);
    default:
        return CS_SUCCEED;
    }
}

// Runs a CS_MONEY4 operation on CS_MONEY and narrows the result; any failure
// zeroes it.
template <class Op> int widened(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3, Op op)
{
    CS_MONEY a, b, r{};
    com__mny4tomny(m1, &a);
    com__mny4tomny(m2, &b);
    int status = op(&a, &b, &r);
    if (status == 0 && com__mnytomny4(&r, m3) < 0)
        status = kes::numeric::kOverflow;
    if (status != 0)
        m3->mny4 = 0;
    return status;
}

// The quotient of an unsigned 64-bit pattern by a 16-bit divisor as the
// schoolbook loop does it in signed 32-bit digit registers: exact below
// 0x8000, and what that arithmetic wraps to above.
void div_by_16bit_digits(uint64_t num, int32_t d, CS_MONEY &res)
{
    int32_t q[4];
    int32_t r = 0;
    for (int i = 3; i >= 0; --i) {
        const auto digit = static_cast<int32_t>((num >> (16 * i)) & 0xFFFF);
        const auto t = static_cast<int32_t>(static_cast<uint32_t>(r) * 65536U + static_cast<uint32_t>(digit));
        q[i] = t / d;
        r = t % d;
    }
    res.mnyhigh = static_cast<CS_INT>(static_cast<uint32_t>(q[3]) * 65536U + static_cast<uint32_t>(q[2]));
    res.mnylow = static_cast<uint32_t>(q[1]) * 65536U + static_cast<uint32_t>(q[0]);
}

} // namespace

extern "C" {

// ---- kernels ----------------------------------------------------------------------

int com__mnycopy(CS_MONEY *mp1, CS_MONEY *mp2)
{
    *mp2 = *mp1;
    return 0;
}

int com__mnyinit(CS_MONEY *mp, int trim)
{
    const int64_t v = value(*mp);
    uint64_t mag = magnitude(v);
    unsigned last = 0;
    for (int i = 0; i < trim && i < 20; ++i) { // 20 digits empty any magnitude
        last = static_cast<unsigned>(mag % 10);
        mag /= 10;
    }
    if (last >= 5)
        ++mag;
    set(*mp, static_cast<int64_t>(mag));
    return v < 0 ? -1 : 0;
}

int com__mnyndigit(CS_MONEY *mp, char *value_out)
{
    const auto mag = static_cast<uint64_t>(value(*mp));
    *value_out = static_cast<char>('0' + mag % 10);
    set(*mp, static_cast<int64_t>(mag / 10));
    return mag / 10 != 0 ? 1 : 0;
}

int com__mnyinc(CS_MONEY *mp)
{
    const int64_t v = value(*mp);
    set(*mp, static_cast<int64_t>(static_cast<uint64_t>(v) + 1));
    return v == kMaxMoney ? 1 : 0;
}

int com__mnydec(CS_MONEY *mp)
{
    const int64_t v = value(*mp);
    set(*mp, static_cast<int64_t>(static_cast<uint64_t>(v) - 1));
    return v == kMinMoney ? 1 : 0;
}

int com__mnyminus(CS_MONEY *imp, CS_MONEY *omp)
{
    const int64_t v = value(*imp);
    set(*omp, static_cast<int64_t>(0 - static_cast<uint64_t>(v)));
    return v == kMinMoney ? 1 : 0;
}

int com__mnydown(CS_MONEY *mp, int dvsr)
{
    const uint64_t d = static_cast<uint32_t>(dvsr) & 0xFFFF;
    if (d == 0) // the kernel divides by the low 16 bits alone
        return 0;
    const int64_t v = value(*mp);
    const uint64_t mag = magnitude(v);
    const uint64_t q = mag / d;
    set(*mp, v < 0 ? static_cast<int64_t>(0 - q) : static_cast<int64_t>(q));
    return static_cast<int>(mag % d);
}

int com__mnyscale(CS_MONEY *mp, int mpier, int add)
{
    if (mpier == 0) {
        set(*mp, add);
        return 0;
    }
    const int64_t v = value(*mp);
    const unsigned __int128 r = static_cast<unsigned __int128>(magnitude(v)) * static_cast<uint32_t>(mpier) +
                                static_cast<uint32_t>(add);
    if (r >> 63 != 0)
        return 1;
    const auto mag = static_cast<int64_t>(r);
    set(*mp, v < 0 ? -mag : mag);
    return 0;
}

int com__mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump)
{
    int64_t r;
    if (__builtin_add_overflow(value(*add1p), value(*add2p), &r)) {
        set(*sump, 0);
        return 1;
    }
    set(*sump, r);
    return 0;
}

int com__mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp)
{
    int64_t r;
    if (__builtin_sub_overflow(value(*minp), value(*subp), &r)) {
        set(*difp, 0);
        return 1;
    }
    set(*difp, r);
    return 0;
}

int com__mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3)
{
    const int64_t a = value(*m1), b = value(*m2);
    const u128 product = static_cast<u128>(magnitude(a)) * magnitude(b);
    // Back to four decimals, half away from zero; a product below one unit
    // is zero even when its remainder would round it up.
    u128 units = product / 10000;
    if (units != 0 && product % 10000 >= 5000)
        ++units;
    return store_signed(units, (a < 0) != (b < 0), *m3) ? 0 : kes::numeric::kOverflow;
}

int com__mnydiv(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3)
{
    const int64_t a = value(*m1), b = value(*m2);
    if (b == 0) {
        set(*m3, 0);
        return kes::numeric::kDivZero;
    }
    // Cut toward zero.  A quotient of 20 digits or more overflows the
    // 19-digit numeric the division is defined on, which zeroes the result;
    // a smaller one that misses 64 bits leaves it as it was.
    const u128 units = static_cast<u128>(magnitude(a)) * 10000 / magnitude(b);
    if (units >= static_cast<u128>(10000000000000000000ULL)) {
        set(*m3, 0);
        return kes::numeric::kOverflow;
    }
    return store_signed(units, (a < 0) != (b < 0), *m3) ? 0 : kes::numeric::kOverflow;
}

void com__maxposmny(CS_MONEY *mp) { set(*mp, kMaxMoney); }
void com__maxnegmny(CS_MONEY *mp) { set(*mp, kMinMoney); }

int com__mnyrem(CS_MONEY *dvddp, CS_MONEY *dvsrp, CS_MONEY *rmp) { return 1; }

// ---- CS_MONEY4 kernels ---------------------------------------------------------

int com__mnyminus4(CS_MONEY4 *imp, CS_MONEY4 *omp)
{
    if (imp->mny4 == INT32_MIN)
        return 1;
    omp->mny4 = -imp->mny4;
    return 0;
}

int com__mnyadd4(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump)
{
    if (__builtin_add_overflow(add1p->mny4, add2p->mny4, &sump->mny4)) {
        sump->mny4 = 0;
        return 1;
    }
    return 0;
}

int com__mnysub4(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp)
{
    if (__builtin_sub_overflow(minp->mny4, subp->mny4, &difp->mny4)) {
        difp->mny4 = 0;
        return 1;
    }
    return 0;
}

int com__mnymul4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) { return widened(m1, m2, m3, com__mnymul); }
int com__mnydiv4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3) { return widened(m1, m2, m3, com__mnydiv); }
int com__mnyrem4(CS_MONEY4 *dvddp, CS_MONEY4 *dvsrp, CS_MONEY4 *rmp) { return 1; }

void com__mny4tomny(CS_MONEY4 *m4p, CS_MONEY *mp) { set(*mp, m4p->mny4); }

int com__mnytomny4(CS_MONEY *mp, CS_MONEY4 *m4p)
{
    const int64_t v = value(*mp);
    if (v >= INT32_MIN && v <= INT32_MAX) {
        m4p->mny4 = static_cast<CS_INT>(v);
        return 4;
    }
    m4p->mny4 = v < 0 ? INT32_MIN : INT32_MAX;
    return -1;
}

// ---- wide division --------------------------------------------------------------

void com__mny16div(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res)
{
    const auto d = static_cast<int32_t>(den->mnylow & 0xFFFF);
    if (d == 0)
        return;
    div_by_16bit_digits(static_cast<uint64_t>(value(*num)), d, *res);
}

void comn__mny16div(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res) { com__mny16div(num, den, res); }

// ---- entries: comn_ maps the status, com_ returns it -------------------------------

#define KES_MONEY_ENTRY2(comn_name, com_name, kernel, T)                      \
    CS_RETCODE comn_name(T *a, T *b)                                          \
    {                                                                         \
        KES_NOT_NULL(a);                                                      \
        KES_NOT_NULL(b);                                                      \
        return mapped(kernel(a, b));                                          \
    }                                                                         \
    CS_INT com_name(T *a, T *b)                                               \
    {                                                                         \
        KES_NOT_NULL(a);                                                      \
        KES_NOT_NULL(b);                                                      \
        return kernel(a, b);                                                  \
    }
#define KES_MONEY_ENTRY3(comn_name, com_name, kernel, T)                      \
    CS_RETCODE comn_name(T *a, T *b, T *c)                                    \
    {                                                                         \
        KES_NOT_NULL(a);                                                      \
        KES_NOT_NULL(b);                                                      \
        KES_NOT_NULL(c);                                                      \
        return mapped(kernel(a, b, c));                                       \
    }                                                                         \
    CS_INT com_name(T *a, T *b, T *c)                                         \
    {                                                                         \
        KES_NOT_NULL(a);                                                      \
        KES_NOT_NULL(b);                                                      \
        KES_NOT_NULL(c);                                                      \
        return kernel(a, b, c);                                               \
    }

KES_MONEY_ENTRY2(comn_mnycopy, com_mnycopy, com__mnycopy, CS_MONEY)
KES_MONEY_ENTRY2(comn_mnyminus, com_mnyminus, com__mnyminus, CS_MONEY)
KES_MONEY_ENTRY3(comn_mnyadd, com_mnyadd, com__mnyadd, CS_MONEY)
KES_MONEY_ENTRY3(comn_mnysub, com_mnysub, com__mnysub, CS_MONEY)
KES_MONEY_ENTRY3(comn_mnydivide, com_mnydivide, com__mnydiv, CS_MONEY)
KES_MONEY_ENTRY3(comn_mnymul, com_mnymul, com__mnymul, CS_MONEY)
KES_MONEY_ENTRY2(comn_mny4minus, com_mny4minus, com__mnyminus4, CS_MONEY4)
KES_MONEY_ENTRY3(comn_mny4add, com_mny4add, com__mnyadd4, CS_MONEY4)
KES_MONEY_ENTRY3(comn_mny4sub, com_mny4sub, com__mnysub4, CS_MONEY4)
KES_MONEY_ENTRY3(comn_mny4divide, com_mny4divide, com__mnydiv4, CS_MONEY4)
KES_MONEY_ENTRY3(comn_mny4mul, com_mny4mul, com__mnymul4, CS_MONEY4)

#undef KES_MONEY_ENTRY2
#undef KES_MONEY_ENTRY3

CS_RETCODE comn_mnyinc(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    return mapped(com__mnyinc(mp));
}
CS_INT com_mnyinc(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    return com__mnyinc(mp);
}

// Decrement knows overflow alone; nothing else can come of it.
CS_RETCODE comn_mnydec(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    return com__mnydec(mp) == 1 ? KES_TRACE(CS_EOVERFLOW) : CS_SUCCEED;
}
CS_INT com_mnydec(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    return com__mnydec(mp);
}

CS_INT comn_mnyinit(CS_MONEY *mp, CS_INT trim) { return com_mnyinit(mp, trim); }
CS_INT com_mnyinit(CS_MONEY *mp, CS_INT trim)
{
    KES_NOT_NULL(mp);
    return com__mnyinit(mp, trim);
}

CS_INT comn_mnyndigit(CS_MONEY *mp, CS_CHAR *value_out) { return com_mnyndigit(mp, value_out); }
CS_INT com_mnyndigit(CS_MONEY *mp, CS_CHAR *value_out)
{
    KES_NOT_NULL(mp);
    KES_NOT_NULL(value_out);
    return com__mnyndigit(mp, value_out);
}

CS_INT comn_mnydown(CS_MONEY *mp, CS_INT dvsr) { return com_mnydown(mp, dvsr); }
CS_INT com_mnydown(CS_MONEY *mp, CS_INT dvsr)
{
    KES_NOT_NULL(mp);
    return com__mnydown(mp, dvsr);
}

CS_RETCODE comn_mnyscale(CS_MONEY *mp, CS_INT mpier, CS_INT add)
{
    KES_NOT_NULL(mp);
    return mapped(com__mnyscale(mp, mpier, add));
}
CS_INT com_mnyscale(CS_MONEY *mp, CS_INT mpier, CS_INT add)
{
    KES_NOT_NULL(mp);
    return com__mnyscale(mp, mpier, add);
}

void comn_mnymaxpos(CS_MONEY *mp) { com_mnymaxpos(mp); }
void com_mnymaxpos(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    com__maxposmny(mp);
}
void comn_mnymaxneg(CS_MONEY *mp) { com_mnymaxneg(mp); }
void com_mnymaxneg(CS_MONEY *mp)
{
    KES_NOT_NULL(mp);
    com__maxnegmny(mp);
}

// High halves as signed, then low halves as unsigned: the order of the
// 64-bit values.
CS_INT comn_mnycmp(CS_MONEY *m1, CS_MONEY *m2) { return com_mnycmp(m1, m2); }
CS_INT com_mnycmp(CS_MONEY *m1, CS_MONEY *m2)
{
    KES_NOT_NULL(m1);
    KES_NOT_NULL(m2);
    const int64_t a = value(*m1), b = value(*m2);
    return a < b ? -1 : a > b ? 1 : 0;
}

void comn_mnyzero(CS_MONEY *mnyptr) { com_mnyzero(mnyptr); }
void com_mnyzero(CS_MONEY *mnyptr)
{
    KES_NOT_NULL(mnyptr);
    set(*mnyptr, 0);
}

// A divisor that fits 16 bits takes the digit loop; a wider one gives the
// exact unsigned quotient, which is below 2^48 and so fits q2:q1:q0.
void comn_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res) { com_mnyxdiv(num, den, res); }
void com_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res)
{
    KES_NOT_NULL(num);
    KES_NOT_NULL(den);
    KES_NOT_NULL(res);
    if ((den->mnylow >> 16) == 0) {
        com__mny16div(num, den, res);
        return;
    }
    set(*res, static_cast<int64_t>(static_cast<uint64_t>(value(*num)) / den->mnylow));
}

CS_RETCODE comn_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2)
{
    KES_NOT_NULL(mp1);
    KES_NOT_NULL(mp2);
    *mp2 = *mp1;
    return CS_SUCCEED;
}
CS_INT com_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2)
{
    KES_NOT_NULL(mp1);
    KES_NOT_NULL(mp2);
    *mp2 = *mp1;
    return 0;
}

CS_INT comn_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2) { return com_mny4cmp(m1, m2); }
CS_INT com_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2)
{
    KES_NOT_NULL(m1);
    KES_NOT_NULL(m2);
    return m1->mny4 < m2->mny4 ? -1 : m1->mny4 > m2->mny4 ? 1 : 0;
}

void comn_mny4zero(CS_MONEY4 *mny4ptr) { com_mny4zero(mny4ptr); }
void com_mny4zero(CS_MONEY4 *mny4ptr)
{
    KES_NOT_NULL(mny4ptr);
    mny4ptr->mny4 = 0;
}

} // extern "C"
