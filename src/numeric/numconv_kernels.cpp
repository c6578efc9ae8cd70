// Exact numerics to and from doubles, 64-bit integers and money.  Doubles and
// 64-bit integers travel through decimal text, so a value converts exactly as
// its printed form reads.
#include <cerrno>
#include <cfloat>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "errors/assert.h"
#include "kescomn/numconv.h"
#include "numeric/exctnume.h"
#include "numeric/mny.h"
#include "numeric/numconv.h"

using namespace kes::numeric;

namespace {

bool is_zero_value(const __CONSTANT *c)
{
    for (int i = 1; i < c->len; ++i)
        if (c->value[i] != 0)
            return false;
    return true;
}

// The value's text, NUL-terminated, at the returned pointer inside buf; null
// when it does not fit.
char *value_text(__CONSTANT *c, char (&buf)[kNumTextBuf + 1])
{
    const int at = com__subexctnumetochar(c, buf, kNumTextBuf);
    buf[kNumTextBuf] = '\0';
    return at < 0 ? nullptr : buf + at;
}

template <class T> int to_64(__CONSTANT *numeval, T *out, T (*parse)(char *))
{
    if (numeval->len == 0)
        return kOk;
    if (is_zero_value(numeval)) {
        *out = 0;
        return kOk;
    }
    char buf[kNumTextBuf + 1];
    char *text = value_text(numeval, buf);
    if (text == nullptr)
        return kOverflow;
    errno = 0;
    const T v = parse(text);
    const int err = errno;
    *out = v;
    if (err == 0)
        return kOk;
    if constexpr (sizeof(T) == 8 && static_cast<T>(-1) < 0) {
        if (v == INT64_MAX)
            return kOverflow;
        return kUnderflow; // the minimum, or no digits at all
    } else {
        return v == 0 ? kUnderflow : kOverflow;
    }
}

void derive_precision(int destlen, CS_BYTE *precision)
{
    KES_ASSERT(destlen >= 2 && destlen <= kMaxLen);
    *precision = Com__Nume_Len_To_Prec[destlen - 2];
}

} // namespace

extern "C" {

CS_BIGINT kesatoll(char *str)
{
    const char *p = str;
    bool neg = false;
    if (*p == '-') {
        neg = true;
        ++p;
    }
    if (*p == '+') {
        neg = false;
        ++p;
    }
    if (*p < '0' || *p > '9') {
        errno = EINVAL;
        return 0;
    }
    // The magnitude grows toward the limit of the sign; one past it overflows.
    const uint64_t limit = neg ? 0x8000000000000000ULL : 0x7FFFFFFFFFFFFFFFULL;
    uint64_t v = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        const unsigned d = static_cast<unsigned>(*p - '0');
        if (v > (limit - d) / 10) {
            errno = ERANGE;
            return neg ? INT64_MIN : INT64_MAX;
        }
        v = v * 10 + d;
    }
    return neg ? static_cast<CS_BIGINT>(0 - v) : static_cast<CS_BIGINT>(v);
}

CS_UBIGINT kesatoull(char *str)
{
    const char *p = str;
    if (*p == '-') {
        errno = ERANGE;
        return 0;
    }
    if (*p == '+')
        ++p;
    if (*p < '0' || *p > '9') {
        errno = EINVAL;
        return 0;
    }
    uint64_t v = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        const unsigned d = static_cast<unsigned>(*p - '0');
        if (v > (UINT64_MAX - d) / 10) {
            errno = ERANGE;
            return UINT64_MAX;
        }
        v = v * 10 + d;
    }
    return v;
}

int com__subexctnumetoflt8(__CONSTANT *numeval, CS_FLOAT *flt8)
{
    if (numeval->len == 0)
        return kOk;
    if (is_zero_value(numeval)) {
        *flt8 = 0.0;
        return kOk;
    }
    char buf[kNumTextBuf + 1];
    const char *text = value_text(numeval, buf);
    if (text == nullptr)
        return kOverflow;
    // from_chars rounds decimal text as strtod does; a value of at most 77
    // digits and 77 decimals lies far inside the range of a double, so
    // neither limit nor underflow can arise.
    double v = 0.0;
    std::from_chars(text, buf + kNumTextBuf, v);
    *flt8 = v;
    return kOk;
}

int com__subexctnumetolonglong(__CONSTANT *numeval, CS_BIGINT *longval)
{
    return to_64<CS_BIGINT>(numeval, longval, kesatoll);
}

int com__subexctnumetoulonglong(__CONSTANT *numeval, CS_UBIGINT *longval)
{
    return to_64<CS_UBIGINT>(numeval, longval, kesatoull);
}

int com__doubletoexctnume(CS_FLOAT flt8val, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale)
{
    if (flt8val == 0.0)
        flt8val = 0.0; // no "-0" in the text
    char buf[kNumScratch];
    const int n = std::snprintf(buf, sizeof buf, "%.*g", 17, flt8val);
    if (*precision == 0 || *precision > kMaxPrec) {
        derive_precision(destlen, precision);
        *scale = 0;
    }
    CS_INT len = destlen;
    CS_BYTE *d = dest;
    const int st = com__subchartoexctnume(buf, n, &d, &len, precision, scale, 1);
    if (st == kOverflow || st == kMalformed)
        return st;
    KES_ASSERT(st == kOk || st == kLostDigits);
    const __CONSTANT c = value_view(dest, destlen, *precision, *scale);
    return com__exctnume_checkprecision(&c) ? kOverflow : kOk;
}

int com__exctnumetomny8(__CONSTANT *numeval, CS_BYTE *dest)
{
    CS_BYTE rounded[kMaxLen];
    KES_ASSERT(numeval->len >= 1 && numeval->len <= kMaxLen);
    __CONSTANT r = value_view(rounded, numeval->len, numeval->prec, numeval->scale);
    com__exctnume_round(numeval, 4, &r);
    CS_BYTE nine[9];
    __CONSTANT out = value_view(nine, 9, 19, 4);
    if (com__exctnume_scale(&r, &out, 4 - numeval->scale, 0) == kOverflow)
        return 0;
    uint64_t mag = 0;
    for (int i = 1; i < 9; ++i)
        mag = mag << 8 | nine[i];
    const bool neg = numeval->value[0] != 0;
    int64_t v;
    if ((mag >> 63) == 0)
        v = neg ? -static_cast<int64_t>(mag) : static_cast<int64_t>(mag);
    else if (neg && mag == 0x8000000000000000ULL)
        v = INT64_MIN;
    else
        return 0;
    CS_MONEY m;
    kes::money::set(m, v);
    std::memcpy(dest, &m, sizeof m);
    return 1;
}

int com__mny8toexctnume(CS_MONEY *mnyptr, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale,
                        int flag)
{
    const int64_t v = kes::money::value(*mnyptr);
    const uint64_t mag = kes::money::magnitude(v);
    CS_BYTE nine[9];
    const bool direct = destlen > 8;
    CS_BYTE *work = direct ? dest : nine;
    const int worklen = direct ? destlen : 9;
    std::memset(work, 0, static_cast<size_t>(worklen));
    for (int i = 0; i < 8; ++i)
        work[worklen - 1 - i] = static_cast<CS_BYTE>(mag >> (8 * i));
    if (*precision == 0 || *precision > kMaxPrec)
        derive_precision(destlen, precision);
    if (*scale > kMaxPrec)
        *scale = 0;
    __CONSTANT c = value_view(work, worklen, kMaxPrec, 4);
    if (*scale != 4) {
        if (*scale < 4) {
            CS_BYTE rounded[kMaxLen];
            __CONSTANT r = value_view(rounded, worklen, kMaxPrec, 4);
            com__exctnume_round(&c, *scale, &r);
            std::memcpy(work, rounded, static_cast<size_t>(worklen));
        }
        const int st = com__exctnume_scale(&c, nullptr, *scale - 4, flag);
        if (st != kOk && st != kLostDigits)
            return st;
    }
    if (v != 0)
        work[0] = 1 & static_cast<CS_BYTE>(v < 0);
    __CONSTANT out = value_view(dest, destlen, *precision, *scale);
    if (!direct && com__exctnume_copy(&c, &out) != kOk)
        return kOverflow;
    return com__exctnume_checkprecision(&out) ? kOverflow : kOk;
}

} // extern "C"
