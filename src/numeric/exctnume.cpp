// The exact numeric kernel on __CONSTANT values.  Magnitudes are big-endian
// base-256 runs behind a sign byte; every temporary is a fixed stack buffer.
#include "numeric/exctnume.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "errors/assert.h"
#include "numeric/limbs.h"

using namespace kes::numeric;

namespace {

// A zeroed value of up to kMaxLen bytes on the stack.
struct TempValue {
    CS_BYTE bytes[kMaxLen]{};
    __CONSTANT c{};

    TempValue(int len, int prec, int scale)
    {
        c.len = len;
        c.maxlen = kMaxLen;
        c.prec = static_cast<CS_BYTE>(prec);
        c.scale = static_cast<CS_BYTE>(scale);
        c.value = bytes;
    }
    TempValue(const TempValue &) = delete;
    TempValue &operator=(const TempValue &) = delete;
};

bool negative(const __CONSTANT *v) { return v->len > 0 && v->value[0] != 0; }

// The magnitude bytes value[1 .. len-1]; empty for a length of 0 or 1.
struct Mag {
    const CS_BYTE *p;
    int n;
};
Mag mag(const __CONSTANT *v) { return v->len > 1 ? Mag{v->value + 1, v->len - 1} : Mag{v->value, 0}; }

// Index of the first non-zero byte of a magnitude, n when it is zero.
int first_nonzero(Mag m)
{
    int i = 0;
    for (; i + 8 <= m.n; i += 8) {
        uint64_t w;
        std::memcpy(&w, m.p + i, 8);
        if (w != 0)
            break;
    }
    while (i < m.n && m.p[i] == 0)
        ++i;
    return i;
}

bool all_zero(Mag m) { return first_nonzero(m) == m.n; }

bool is_zero(const __CONSTANT *v) { return all_zero(mag(v)); }

// Magnitude comparison at equal place values: a non-zero byte in the excess
// of the longer one decides for it, then the rest compares from the top.
int cmp_mag(Mag a, Mag b)
{
    if (a.n > b.n) {
        if (!all_zero({a.p, a.n - b.n}))
            return 1;
        a = {a.p + a.n - b.n, b.n};
    } else if (b.n > a.n) {
        if (!all_zero({b.p, b.n - a.n}))
            return -1;
        b = {b.p + b.n - a.n, a.n};
    }
    // Big-endian runs compare as numbers eight bytes at a time: a library
    // memcmp costs more than these short runs.
    int i = 0;
    for (; i + 8 <= a.n; i += 8) {
        uint64_t x, y;
        std::memcpy(&x, a.p + i, 8);
        std::memcpy(&y, b.p + i, 8);
        if (x != y)
            return __builtin_bswap64(x) > __builtin_bswap64(y) ? 1 : -1;
    }
    for (; i < a.n; ++i)
        if (a.p[i] != b.p[i])
            return a.p[i] > b.p[i] ? 1 : -1;
    return 0;
}

void set_sign(__CONSTANT *v, bool neg)
{
    if (v->len > 0)
        v->value[0] = neg ? 1 : 0;
}

// The division proper, with the shift already decided (scale passes 0 so
// that its power-of-ten divisor shifts nothing).
int div_core(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *quot, __CONSTANT *remdr, int shift)
{
    if (shift > kMaxPrec || shift < -kMaxPrec)
        return kOverflow;

    CS_BYTE work[kDivWorkArea]; // the product below writes every byte it uses
    int used = 0;
    __CONSTANT num = *op1;
    __CONSTANT den = *op2;
    if (shift != 0) {
        const int e = shift > 0 ? shift : -shift;
        const __CONSTANT pow = power_of_ten(e);
        const __CONSTANT *scaled_src = shift > 0 ? op1 : op2;
        const int len = scaled_src->len + Com__Nume_Prec_To_Len[e] + 1;
        if (len > kDivWorkArea)
            return kOverflow;
        __CONSTANT prod = value_view(work, len);
        used = len;
        if (com__exctnume_intmul(scaled_src, &pow, &prod) != kOk)
            return kOverflow;
        prod.value[0] = 0;
        (shift > 0 ? num : den) = prod;
    }
    const int qspace = num.len + 1;
    const int rspace = remdr ? 0 : den.len;
    if (used + qspace + rspace > kDivWorkArea)
        return kOverflow;

    if (is_zero(&den))
        return kDivZero;
    // The same quotient and remainder as com__exctnume_intdiv, on 64-bit
    // digits: an eighth of the digits, each step one hardware operation.
    CS_BYTE qbytes[limbs::kWideBytes + 1], rbytes[limbs::kWideBytes + 1];
    __CONSTANT q{}, r{};
    limbs::divide(&num, &den, qbytes, rbytes, &q, &r);

    if (remdr) {
        if (r.len == 0) {
            remdr->len = 0;
        } else {
            remdr->len = den.len;
            (void)com__exctnume_copy(&r, remdr);
        }
    }
    if (q.len == 0) {
        std::memset(quot->value, 0, static_cast<size_t>(quot->len));
        return kOk;
    }
    // A quotient with more significant bytes than quot has room for.
    if (com__exctnume_copy(&q, quot) != kOk)
        return kOverflow;
    quot->value[0] = op1->value[0] == op2->value[0] ? 0 : 1;
    return com__exctnume_checkprecision(quot) ? kOverflow : kOk;
}

// Magnitude of src into the kMaxLen + 1 byte buffer buf, right-aligned with a
// spare zero byte in front for a carry; returns the run (sign byte zero).
__CONSTANT unsigned_copy(const __CONSTANT *src, CS_BYTE *buf, int bufsize)
{
    const Mag m = mag(src);
    const int ms = std::min(m.n, bufsize - 2);
    std::memset(buf, 0, static_cast<size_t>(bufsize));
    std::memcpy(buf + bufsize - ms, m.p + m.n - ms, static_cast<size_t>(ms));
    return value_view(buf + bufsize - ms - 1, ms + 1);
}

// Increments a non-negative run, first giving it a leading byte when every
// magnitude byte is 255 (the byte in front of the run is addressable).
void increment_widening(__CONSTANT *run)
{
    if (com__exctnume_needsbyte(run)) {
        --run->value;
        ++run->len;
        run->value[0] = 0;
    }
    (void)com__exctnume_inc(run);
}

} // namespace

extern "C" {

int com__exctnume_cmp(const __CONSTANT *op1, const __CONSTANT *op2, int flag)
{
    int sense = 1;
    if (flag & 1) {
        const bool n1 = negative(op1);
        const bool n2 = negative(op2);
        if (n1 != n2) {
            const __CONSTANT *neg = n1 ? op1 : op2;
            const __CONSTANT *pos = n1 ? op2 : op1;
            if (is_zero(neg) && is_zero(pos))
                return 0;
            return n1 ? -1 : 1;
        }
        if (n1)
            sense = -1;
    }

    if (!(flag & 2) || op1->scale == op2->scale)
        return sense * cmp_mag(mag(op1), mag(op2));

    const bool first_hi = op1->scale > op2->scale;
    const __CONSTANT *hi = first_hi ? op1 : op2;
    const __CONSTANT *lo = first_hi ? op2 : op1;
    const int diff = hi->scale - lo->scale;
    TempValue tmp(kMaxLen, kMaxPrec, 0);
    Mag a = mag(op1);
    Mag b = mag(op2);
    // Widening lo could need more than 77 digits; then hi is cut down
    // instead, so values that differ only in the cut digits compare equal.
    if (lo->prec + hi->scale <= kMaxPrec) {
        tmp.c.scale = hi->scale;
        (void)com__exctnume_scale(const_cast<__CONSTANT *>(lo), &tmp.c, diff, 0);
        (first_hi ? b : a) = mag(&tmp.c);
    } else {
        tmp.c.scale = lo->scale;
        (void)com__exctnume_scale(const_cast<__CONSTANT *>(hi), &tmp.c, -diff, 0);
        (first_hi ? a : b) = mag(&tmp.c);
    }
    return sense * cmp_mag(a, b);
}

int com__exctnume_scale(__CONSTANT *inval, __CONSTANT *outval, int scale, int statflag)
{
    if (scale == 0)
        return outval ? com__exctnume_copy(inval, outval) : kOk;
    if (scale >= kMaxPrec + 1 || scale <= -(kMaxPrec + 1))
        return kMalformed;
    if (!outval) {
        if (inval->len > kMaxLen)
            return kOverflow;
        TempValue tmp(inval->len, inval->prec, inval->scale);
        const int st = com__exctnume_scale(inval, &tmp.c, scale, statflag);
        std::memcpy(inval->value, tmp.bytes, static_cast<size_t>(inval->len));
        return st;
    }
    if (scale > 0) {
        const __CONSTANT pow = power_of_ten(scale);
        return com__exctnume_intmul(inval, &pow, outval) == kOk ? kOk : kOverflow;
    }
    const __CONSTANT pow = power_of_ten(-scale);
    CS_BYTE rbytes[kMaxLen + 1];
    __CONSTANT rem = value_view(rbytes, 0);
    if (div_core(inval, &pow, outval, &rem, 0) != kOk)
        return kOverflow;
    return rem.len != 0 ? kLostDigits : kOk;
}

int com__exctnume_checkprecision(const __CONSTANT *val)
{
    if (val->prec > kMaxPrec)
        return 0;
    const __CONSTANT pow = power_of_ten(val->prec);
    return pow.len <= val->len && com__exctnume_cmp(&pow, val, 0) <= 0 ? 1 : 0;
}

int com__exctnume_intcmp(const __CONSTANT *val, int i)
{
    const Mag m = mag(val);
    if (m.n == 0)
        return i == 0;
    if (first_nonzero({m.p, m.n - 1}) != m.n - 1)
        return 0;
    return m.p[m.n - 1] == i;
}

int com__exctnume_copy(const __CONSTANT *inval, __CONSTANT *outval)
{
    const Mag in = mag(inval);
    const int out_n = outval->len > 1 ? outval->len - 1 : 0;
    const int n = std::min(in.n, out_n);
    std::memmove(outval->value + 1 + out_n - n, in.p + in.n - n, static_cast<size_t>(n));
    if (out_n > n)
        std::memset(outval->value + 1, 0, static_cast<size_t>(out_n - n));
    if (outval->len > 0)
        outval->value[0] = negative(inval) ? 1 : 0;
    return first_nonzero({in.p, in.n - n}) != in.n - n ? kOverflow : kOk;
}

int com__exctnume_divby10(CS_BYTE **ptrtobufptr, int *lenptr)
{
    CS_BYTE *p = *ptrtobufptr;
    const int len = *lenptr;
    unsigned rem = 0;
    for (int i = 0; i < len; ++i) {
        const unsigned cur = (rem << 8) | p[i];
        p[i] = static_cast<CS_BYTE>(cur / 10);
        rem = cur % 10;
    }
    if (len >= 3 && p[1] == 0 && !(len == 3 && p[2] == 255)) {
        *ptrtobufptr = p + 1;
        *lenptr = len - 1;
    }
    return static_cast<int>(rem);
}

int com__exctnume_mulby10_add(__CONSTANT *numeval, int i)
{
    unsigned carry = static_cast<unsigned>(i);
    for (int k = numeval->len - 1; k >= 1; --k) {
        const unsigned cur = numeval->value[k] * 10u + carry;
        numeval->value[k] = static_cast<CS_BYTE>(cur);
        carry = cur >> 8;
    }
    return carry != 0 ? kOverflow : kOk;
}

int com__exctnume_inc(__CONSTANT *numeptr)
{
    if (numeptr->len == 0)
        return kMalformed;
    if (numeptr->value[0] != 0) {
        numeptr->value[0] = 0;
        KES_ASSERT(com__exctnume_dec(numeptr) == kOk);
        numeptr->value[0] = is_zero(numeptr) ? 0 : static_cast<CS_BYTE>(numeptr->value[0] ^ 1);
        return kOk;
    }
    for (int k = numeptr->len - 1; k >= 1; --k)
        if (++numeptr->value[k] != 0)
            return kOk;
    return kOverflow;
}

int com__exctnume_dec(__CONSTANT *numeptr)
{
    if (numeptr->len == 0)
        return kMalformed;
    if (numeptr->value[0] != 0) {
        numeptr->value[0] = 0;
        const int st = com__exctnume_inc(numeptr);
        numeptr->value[0] = 1;
        return st;
    }
    for (int k = numeptr->len - 1; k >= 1; --k)
        if (numeptr->value[k]-- != 0)
            return kOk;
    // The borrow ran off the top: the value was zero and is now -1.
    std::memset(numeptr->value + 1, 0, static_cast<size_t>(numeptr->len - 1));
    if (numeptr->len > 1)
        numeptr->value[numeptr->len - 1] = 1;
    numeptr->value[0] = 1;
    return kOk;
}

int com__exctnume_needsbyte(const __CONSTANT *numeptr)
{
    for (int k = 1; k < numeptr->len; ++k)
        if (numeptr->value[k] != 255)
            return 0;
    return 1;
}

int com__exctnume_intadd(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result)
{
    return limbs::add_sub(op1, op2, result, false);
}

int com__exctnume_intsub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result)
{
    return limbs::add_sub(op1, op2, result, true);
}

int com__exctnume_intmul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result)
{
    // One scan per operand finds both the zero and the unit operands.
    const Mag m1 = mag(op1);
    const Mag m2 = mag(op2);
    const int f1 = first_nonzero(m1);
    const int f2 = first_nonzero(m2);
    if (f1 == m1.n || f2 == m2.n) {
        if (result->len > 0)
            std::memset(result->value, 0, static_cast<size_t>(result->len));
        return kOk;
    }
    const auto unit = [](Mag m, int first) { return first == m.n - 1 && m.p[first] == 1; };
    const CS_BYTE sign = op1->value[0] == op2->value[0] ? 0 : 1;
    int st;
    if (unit(m1, f1))
        st = com__exctnume_copy(op2, result);
    else if (unit(m2, f2))
        st = com__exctnume_copy(op1, result);
    else
        st = limbs::mul(op1, op2, result);
    if (result->len > 0)
        result->value[0] = sign;
    return st;
}

int com__exctnume_intdiv(const __CONSTANT *a, const __CONSTANT *b, __CONSTANT *q, __CONSTANT *r)
{
    const Mag ma = mag(a);
    const Mag mb = mag(b);
    const int ia = first_nonzero(ma);
    const int ib = first_nonzero(mb);
    const int n = ma.n - ia;
    const int m = mb.n - ib;
    if (m == 0)
        return kDivZero;

    if (cmp_mag(mb, ma) > 0) {
        q->len = 0;
        r->value = a->value + ia; // the byte before the first significant one
        r->len = n == 0 ? 0 : n + 1;
        return kOk;
    }
    // The quotient's n - m + 1 digits and the remainder's m share one run of
    // n + 1 bytes, with a byte in front standing for the quotient's sign.
    if ((n - m + 1) + m + 1 > q->len)
        return kOverflow;
    CS_BYTE *run = q->value + q->len - (n + 1);
    run[-1] = 0;
    run[0] = 0;
    std::memmove(run + 1, ma.p + ia, static_cast<size_t>(n));
    const CS_BYTE *v = mb.p + ib;

    if (m == 1) {
        const unsigned d = v[0];
        unsigned rem = 0;
        for (int j = 0; j < n; ++j) {
            const unsigned cur = (rem << 8) | run[j + 1];
            run[j] = static_cast<CS_BYTE>(cur / d);
            rem = cur % d;
        }
        run[n] = static_cast<CS_BYTE>(rem);
    } else {
        limbs::knuth_d(run, n, v, m);
    }

    const int qdigits = n - m + 1;
    int k = 0;
    while (run[k] == 0) // the quotient is at least 1
        ++k;
    q->value = run + k - 1;
    q->len = qdigits - k + 1;

    int t = qdigits;
    while (t <= n && run[t] == 0)
        ++t;
    if (t > n) {
        r->value = run + n;
        r->len = 0;
    } else {
        r->value = run + t - 1;
        r->len = n - t + 2;
    }
    return kOk;
}

int com__exctnume_addorsub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, int opn)
{
    const bool n1 = negative(op1);
    const bool n2 = negative(op2);
    bool neg;
    int st;
    const __CONSTANT *larger = op1;
    if ((n1 == n2) == (opn == 0)) {
        neg = n1;
        st = com__exctnume_intadd(op1, op2, result);
    } else {
        const int c = cmp_mag(mag(op1), mag(op2));
        if (c == 0) {
            std::memset(result->value, 0, static_cast<size_t>(result->len));
            return kOk;
        }
        if (c > 0) {
            neg = n1;
        } else {
            larger = op2;
            neg = n2 != (opn == 1);
        }
        st = com__exctnume_intsub(larger, larger == op1 ? op2 : op1, result);
    }
    if (st != kOk) {
        std::memset(result->value, 0, static_cast<size_t>(result->len));
        return kOverflow;
    }
    set_sign(result, neg && !is_zero(result));
    st = com__exctnume_scale(result, nullptr, result->scale - larger->scale, 0);
    if (st != kOk)
        return st;
    return com__exctnume_checkprecision(result) ? kOverflow : kOk;
}

int com__exctnume_mul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *res)
{
    const int prodscale = op1->scale + op2->scale;
    const int shift = res->scale - prodscale;
    int st;
    if (res->prec >= op1->prec + op2->prec) {
        if (com__exctnume_intmul(op1, op2, res) != kOk)
            return kOverflow;
        st = com__exctnume_scale(res, nullptr, shift, 0);
    } else {
        TempValue tmp(kMaxLen, kMaxPrec, prodscale);
        if (com__exctnume_intmul(op1, op2, &tmp.c) != kOk)
            return kOverflow;
        st = com__exctnume_scale(&tmp.c, res, shift, 0);
    }
    if (st != kOk)
        return st;
    return com__exctnume_checkprecision(res) ? kOverflow : kOk;
}

int com__exctnume_div(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *quot, __CONSTANT *remdr)
{
    return div_core(op1, op2, quot, remdr, quot->scale - op1->scale + op2->scale);
}

void com__exctnume_round(const __CONSTANT *op, int scale, __CONSTANT *result)
{
    if (op->scale <= scale) {
        (void)com__exctnume_copy(op, result);
        return;
    }
    const int n = scale >= 1 ? op->scale - scale : std::min<int>(op->prec, op->scale - scale);
    CS_BYTE buf[kMaxLen + 1];
    __CONSTANT run = unsigned_copy(op, buf, sizeof buf);
    int rem = 0;
    for (int i = 0; i < n; ++i)
        rem = com__exctnume_divby10(&run.value, &run.len);
    if (rem > 4)
        increment_widening(&run);
    if (n > kMaxPrec) { // nothing of a 33-byte magnitude survives
        std::memset(result->value, 0, static_cast<size_t>(result->len));
        return;
    }
    const __CONSTANT pow = power_of_ten(n);
    (void)com__exctnume_intmul(&run, &pow, result);
    set_sign(result, negative(op) && !is_zero(result));
}

void com__exctnume_ceilingfloor(const __CONSTANT *op, __CONSTANT *result, int type)
{
    CS_BYTE buf[kMaxLen + 1];
    __CONSTANT run = unsigned_copy(op, buf, sizeof buf);
    bool inexact = false;
    for (int i = 0; i < op->scale; ++i)
        inexact |= com__exctnume_divby10(&run.value, &run.len) != 0;
    const bool neg = negative(op);
    if (inexact && (type != 0) != neg)
        increment_widening(&run);
    result->prec = op->prec;
    result->scale = 0;
    (void)com__exctnume_copy(&run, result);
    set_sign(result, neg && !is_zero(result));
}

} // extern "C"
