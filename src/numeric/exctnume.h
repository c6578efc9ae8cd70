/*
** The exact numeric kernel: values of up to 77 decimal digits held in a
** __CONSTANT as a sign byte (value[0], non-zero is negative) and a big-endian
** base-256 magnitude (value[1] .. value[len-1]), with prec and scale beside.
** Only len, prec, scale and value are read.
**
** Every operation returns a small status:
**   0 success, 1 overflow, 2 malformed input or shift out of range,
**   3 division by zero, 5 underflow, 6 digits lost.
** None allocates; temporaries are fixed-size stack buffers.
*/
#ifndef KESCOMN_NUMERIC_EXCTNUME_H
#define KESCOMN_NUMERIC_EXCTNUME_H

#include "kescomn/types.h"
#include "numeric/nume_tables.h"

namespace kes::numeric {

enum Status : int {
    kOk = 0,
    kOverflow = 1,
    kMalformed = 2,
    kDivZero = 3,
    kUnderflow = 5,
    kLostDigits = 6,
};

// Division keeps all its temporaries in one zeroed area of this size.
inline constexpr int kDivWorkArea = 132;

// A value of len bytes at bytes (room for exactly len), of the given precision
// and scale.
inline __CONSTANT value_view(CS_BYTE *bytes, int len, int prec = 0, int scale = 0)
{
    __CONSTANT c{};
    c.len = len;
    c.maxlen = len;
    c.prec = static_cast<CS_BYTE>(prec);
    c.scale = static_cast<CS_BYTE>(scale);
    c.value = bytes;
    return c;
}

// A read-only view of 10^n (0 <= n <= 77) as a value of precision n + 1.
inline __CONSTANT power_of_ten(int n)
{
    __CONSTANT c{};
    c.len = Com__Nume_Byte_Power_Array[n][0];
    c.maxlen = c.len;
    c.prec = static_cast<CS_BYTE>(n + 1 > kMaxPrec ? kMaxPrec : n + 1);
    c.value = const_cast<CS_BYTE *>(&Com__Nume_Byte_Power_Array[n][1]);
    return c;
}

} // namespace kes::numeric

extern "C" {

/* Three-way comparison: 1, 0 or -1.  flag bit 1 honours the signs (a negative
   zero equals zero); bit 2 aligns the scales, multiplying the operand of the
   smaller scale up when its prec plus the other scale is at most 77 and
   otherwise dividing the other down, dropping the remainder.  Without bit 1
   the magnitudes alone are compared. */
int com__exctnume_cmp(const __CONSTANT *op1, const __CONSTANT *op2, int flag);

/* Multiplies the magnitude by 10^scale, or divides it by 10^-scale (cut
   toward zero) when scale is negative, into outval, or in place when outval
   is null (in place, a value longer than 33 bytes is status 1).  Never
   writes a scale field.  0; 1 overflow; 2 |scale| >= 78;
   6 non-zero digits dropped (the quotient is stored anyway).  statflag is
   ignored: callers decide what 6 means. */
int com__exctnume_scale(__CONSTANT *inval, __CONSTANT *outval, int scale, int statflag);

/* 0 when the magnitude is below 10^prec, 1 when it is not. */
int com__exctnume_checkprecision(const __CONSTANT *val);

/* 1 when the magnitude is exactly i (0 <= i <= 255), else 0. */
int com__exctnume_intcmp(const __CONSTANT *val, int i);

/* Right-aligned copy between values of different len; the sign byte goes
   across as 0 or 1.  1 when a non-zero high byte of inval does not fit. */
int com__exctnume_copy(const __CONSTANT *inval, __CONSTANT *outval);

/* Divides the byte run *ptrtobufptr of *lenptr bytes by 10 in place, first
   byte included (clear a sign byte first), and returns the remainder 0..9.
   Then drops a zero second byte by advancing the pointer, when the length is
   at least 3 (except at length 3 with a last byte of 255). */
int com__exctnume_divby10(CS_BYTE **ptrtobufptr, int *lenptr);

/* magnitude = magnitude * 10 + i; 1 when a carry leaves the top byte. */
int com__exctnume_mulby10_add(__CONSTANT *numeval, int i);

/* Signed +1 / -1 in units of the last place.  0; 1 on overflow; 2 when len
   is 0.  A result of zero is positive; -1 from zero is magnitude 1, sign 1. */
int com__exctnume_inc(__CONSTANT *numeptr);
int com__exctnume_dec(__CONSTANT *numeptr);

/* 1 when every magnitude byte is 255 (an increment would need a byte). */
int com__exctnume_needsbyte(const __CONSTANT *numeptr);

/* Magnitude arithmetic, scales and signs ignored.  The length comes from op1,
   and op2 is read at the same places, so the add and sub operands must have
   equal len; intsub needs op1 >= op2.  The result may be longer (cleared
   first) or shorter (a carry or non-zero byte beyond it is 1).  intmul gives
   the result the sign 0 when the operands' sign bytes are equal, else 1. */
int com__exctnume_intadd(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result);
int com__exctnume_intsub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result);
int com__exctnume_intmul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result);

/* Integer division of magnitudes (Knuth's Algorithm D in base 256).  q is the
   work buffer: q->value and q->len give its room, which must hold the
   dividend's significant bytes plus two (the run and a byte in front of it).
   Afterwards q->value / q->len and r->value / r->len point into that buffer
   (or, when b > a, r into a's bytes) one byte before the first significant
   byte, which stands for a sign byte but is not cleared; a length of 0 means
   zero.  Nothing is copied out.  0; 1 when q has no room; 3 when b is 0. */
int com__exctnume_intdiv(const __CONSTANT *a, const __CONSTANT *b, __CONSTANT *q, __CONSTANT *r);

/* Signed addition (opn 0) or subtraction (opn 1) of operands of equal prec
   and scale into result, whose prec and scale the caller has chosen; the
   result is shifted by result.scale - op scale and checked against its
   precision.  Equal magnitudes under subtraction give positive zero. */
int com__exctnume_addorsub(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *result, int opn);

/* Signed product at scale op1.scale + op2.scale, shifted to res->scale and
   checked against res->prec.  A dropped non-zero digit is a failure (6). */
int com__exctnume_mul(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *res);

/* Signed quotient at quot->scale, truncated toward zero.  remdr may be null;
   otherwise its buffer must hold the divisor's len (after any shift) and it
   receives the remainder there right-aligned with a zero sign byte, or len 0
   when the remainder is zero.  1 when the shift exceeds 77 either way,
   when the 132-byte work area cannot hold the temporaries, or when the
   quotient does not fit quot; 3 on a zero divisor. */
int com__exctnume_div(const __CONSTANT *op1, const __CONSTANT *op2, __CONSTANT *quot, __CONSTANT *remdr);

/* Rounds op half away from zero to scale decimals (scale <= 0 rounds into
   the integer part), deciding by the most significant removed digit alone.
   result gets the same len and keeps op's scale, with zeros in the removed
   places; a zero result is positive. */
void com__exctnume_round(const __CONSTANT *op, int scale, __CONSTANT *result);

/* Ceiling (type non-zero) or floor (type 0) of op into result at scale 0;
   result must be at least as long as op.  A zero result is positive. */
void com__exctnume_ceilingfloor(const __CONSTANT *op, __CONSTANT *result, int type);

/* An integer into a cleared value of destlen bytes at dest.  A *precision of
   0 or above 77 becomes the largest that destlen holds and *scale 0; then the
   value is scaled by 10^*scale and checked against *precision.  0 or 1; a
   zero source is positive. */
int com__longtoexctnume(CS_INT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale);
int com__ulongtoexctnume(CS_UINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale);
int com__longlongtoexctnume(CS_BIGINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale);
int com__ulonglongtoexctnume(CS_UBIGINT value, CS_BYTE *dest, int destlen, CS_BYTE *precision,
                             CS_BYTE *scale);

} /* extern "C" */

#endif
