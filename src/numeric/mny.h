/*
** Money kernels.  A CS_MONEY is one 64-bit two's complement count of
** ten-thousandths split into mnyhigh (signed, first) and mnylow; a CS_MONEY4
** is a 32-bit count.  Kernels return the small status of the numeric core
** (0 success, 1 overflow, 2 malformed, 3 division by zero) unless said
** otherwise, keep no state and allocate nothing.
*/
#ifndef KESCOMN_NUMERIC_MNY_H
#define KESCOMN_NUMERIC_MNY_H

#include <cstdint>

#include "kescomn/types.h"

namespace kes::money {

// The 64-bit value of the two halves, and back.
inline int64_t value(const CS_MONEY &m)
{
    return static_cast<int64_t>((static_cast<uint64_t>(static_cast<uint32_t>(m.mnyhigh)) << 32) | m.mnylow);
}
inline void set(CS_MONEY &m, int64_t v)
{
    m.mnyhigh = static_cast<CS_INT>(static_cast<uint64_t>(v) >> 32);
    m.mnylow = static_cast<CS_UINT>(static_cast<uint64_t>(v));
}
// The magnitude: two's complement negation across both halves, so the most
// negative value gives 2^63.
inline uint64_t magnitude(int64_t v) { return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v); }

} // namespace kes::money

extern "C" {

/* ---- arithmetic ----------------------------------------------------------- */

/* mp2 = mp1.  0. */
int com__mnycopy(CS_MONEY *mp1, CS_MONEY *mp2);
/* mp = |mp| / 10^trim, rounded up when the last removed digit is 5 or more.
   -1 when the value was negative, else 0: the sign goes to the caller. */
int com__mnyinit(CS_MONEY *mp, int trim);
/* The lowest decimal digit of the (non-negative) mp as a character into
   *value, and mp /= 10.  1 while something remains, else 0. */
int com__mnyndigit(CS_MONEY *mp, char *value);
/* +1 unit; from the largest value it wraps to the most negative, status 1. */
int com__mnyinc(CS_MONEY *mp);
/* -1 unit; from the most negative value it wraps to the largest, status 1. */
int com__mnydec(CS_MONEY *mp);
/* omp = -imp; the most negative value is status 1 and stored as itself. */
int com__mnyminus(CS_MONEY *imp, CS_MONEY *omp);
/* Divides the magnitude by the low 16 bits of dvsr and restores the sign;
   returns the remainder (non-negative).  dvsr 0, or one whose low 16 bits
   are 0, changes nothing and returns 0. */
int com__mnydown(CS_MONEY *mp, int dvsr);
/* mpier 0: mp = add.  Otherwise |mp| * mpier + add (both taken unsigned) with
   the sign restored; a result of more than 63 bits is status 1, mp unchanged. */
int com__mnyscale(CS_MONEY *mp, int mpier, int add);
/* Sum and difference; overflow stores zero and is status 1. */
int com__mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump);
int com__mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp);
/* Product rounded half away from zero to 1/10000; a product below one unit
   is zero even when it would round up.  Overflow is status 1 with m3
   unchanged. */
int com__mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);
/* Quotient cut toward zero at 1/10000.  A zero divisor zeroes m3 (status
   3); a quotient of more than 19 digits (counted in units of 1/10000) zeroes
   m3 (status 1); one that only misses the money range leaves m3 (status 1). */
int com__mnydiv(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);
/* The largest and the most negative value. */
void com__maxposmny(CS_MONEY *mp);
void com__maxnegmny(CS_MONEY *mp);
/* No remainder is offered: always 1, nothing written. */
int com__mnyrem(CS_MONEY *dvddp, CS_MONEY *dvsrp, CS_MONEY *rmp);

/* The 32-bit twins.  minus4 does not write omp for the most negative value;
   any failure of mul4/div4 zeroes the result and returns the inner status,
   or 1 when the narrowing failed. */
int com__mnyminus4(CS_MONEY4 *imp, CS_MONEY4 *omp);
int com__mnyadd4(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump);
int com__mnysub4(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp);
int com__mnymul4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
int com__mnydiv4(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
int com__mnyrem4(CS_MONEY4 *dvddp, CS_MONEY4 *dvsrp, CS_MONEY4 *rmp);

/* Divides the 64-bit pattern of num by den->mnylow (unsigned, 16-bit digits,
   no sign or scale).  Not defined for a zero divisor, which leaves res alone. */
void com__mny16div(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res);
void comn__mny16div(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res);

/* ---- widening and narrowing --------------------------------------------- */

/* mp = m4p, sign-extended. */
void com__mny4tomny(CS_MONEY4 *m4p, CS_MONEY *mp);
/* 4 when the value fits 32 bits; otherwise -1 with the limit of its sign. */
int com__mnytomny4(CS_MONEY *mp, CS_MONEY4 *m4p);

/* ---- text --------------------------------------------------------------- */

/* Writes the value right-aligned into the len bytes at cp and returns its
   first character, or null when it does not fit.  The low byte of style set
   to 1 asks for "," groups; style >> 8 is the number of decimals (0 means 2,
   4 or more means 4), rounded by the last removed digit alone.  No NUL. */
char *com__mnytochar(CS_MONEY *mp, char *cp, int len, int style);
char *com__mny4tochar(CS_MONEY4 *m4p, char *cp, int len, int style);
/* Parses ilen bytes of money text, classified through chatr (null: ISO
   8859-1).  style is ignored.  Status 0, 1 (out of range) or 2 (malformed). */
int com__mnyfromchar_mb(CS_MONEY *mp, char *icp, int ilen, int style, CS_ATTRIB *chatr);
/* The same into a CS_MONEY4; a value outside it is status 1 (the limit is
   stored). */
int com__mny4fromchar_mb(CS_MONEY4 *m4p, char *icp, int ilen, int style, CS_ATTRIB *chatr);

/* ---- integers and floats -------------------------------------------------- */

/* Integer to money: value * 10000; status 1 on overflow (a ui8 with its top
   bit set always overflows).  The 4-byte forms return 1 when the value misses
   CS_MONEY4 and store its limit. */
int com__inttomny(CS_MONEY *mp, CS_INT *ip);
int com__int8tomny(CS_MONEY *mp, CS_BIGINT *ip);
int com__uinttomny(CS_MONEY *mp, CS_UINT *ip);
int com__uint8tomny(CS_MONEY *mp, CS_UBIGINT *ip);
int com__inttomny4(CS_MONEY4 *m4p, CS_INT *ip);
int com__int8tomny4(CS_MONEY4 *m4p, CS_BIGINT *ip);
int com__uinttomny4(CS_MONEY4 *m4p, CS_UINT *ip);
int com__uint8tomny4(CS_MONEY4 *m4p, CS_UBIGINT *ip);

/* Money to integer, rounded half away from zero.  mnytoint clamps to the
   32-bit limits with status 1; mnytoint8 cannot fail; the unsigned forms are
   status 1 for any negative value without writing, and mnytouint stores all
   ones with status 1 beyond 32 bits. */
int com__mnytoint(CS_MONEY *mp, CS_INT *ip);
int com__mnytoint8(CS_MONEY *mp, CS_BIGINT *ip);
int com__mnytouint(CS_MONEY *mp, CS_UINT *ip);
int com__mnytouint8(CS_MONEY *mp, CS_UBIGINT *ip);
int com__mny4toint(CS_MONEY4 *m4p, CS_INT *ip);
int com__mny4toint8(CS_MONEY4 *m4p, CS_BIGINT *ip);
int com__mny4touint(CS_MONEY4 *m4p, CS_UINT *ip);
int com__mny4touint8(CS_MONEY4 *m4p, CS_UBIGINT *ip);

/* Money to float: mnylow / 10000.0 + 429496.7296 * mnyhigh.  Return 8 or 4;
   srclen, destlen and style are unused. */
int com__mnytoflt8(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style);
int com__mnytoflt4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style);
int com__mny4toflt8(CS_VOID *src, CS_VOID *dest);
int com__mny4toflt4(CS_VOID *src, CS_VOID *dest);

/* Float to money, rounded half away from zero by adding 5e-5 to the
   magnitude.  8 (or 4), or -1 beyond the range.  A null src or a srclen of 0
   stores zero.  destlen and style are unused. */
int com__flt8tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style);
int com__flt4tomny(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT destlen, CS_INT style);
int com__flt8tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style);
int com__flt4tomny4(CS_VOID *src, CS_INT srclen, CS_VOID *dest, CS_INT style);

} /* extern "C" */

#endif
