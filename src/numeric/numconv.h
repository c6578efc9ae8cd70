/*
** The kernels that move values into and out of exact numerics: decimal text
** both ways, doubles, 64-bit integers and money.  Statuses are those of the
** numeric kernel (exctnume.h).  A destination is a byte run and its length;
** precision and scale are in-out bytes, and a precision of 0 or above 77
** means "derive it".  None allocates.
*/
#ifndef KESCOMN_NUMERIC_NUMCONV_H
#define KESCOMN_NUMERIC_NUMCONV_H

#include "kescomn/types.h"

namespace kes::numeric {

// The text of any valid value fits here, except a negative one at scale 77.
inline constexpr int kNumTextBuf = 79;
// Room for decimal text handed to the text reader, its NUL included.
inline constexpr int kNumScratch = 1024;

} // namespace kes::numeric

extern "C" {

/* Decimal text to 64-bit integers, stopping at the first non-digit.
   kesatoll: "-" then an optional "+" (which makes the sign positive again);
   no digit is EINVAL and 0, overflow ERANGE and the limit of the sign.
   kesatoull: a leading "-" is ERANGE and 0, "+" is skipped, no digit EINVAL
   and 0, overflow ERANGE and all ones.  errno is left alone on success. */
CS_BIGINT kesatoll(char *str);
CS_UBIGINT kesatoull(char *str);

/* Decimal text (len bytes at cp, followed somewhere by a NUL that ends an
   exponent) into the *destlen bytes at *dest (0 means 33), at *scale decimals
   (78 or more: the text's own) and *precision digits (0 or above 77: the
   fewest that hold the digits read, and then *dest and *destlen are moved to
   that length, right-aligned).  flag 1 rounds digits past the scale or the
   capacity half up by the first of them and ignores the rest; any other flag
   refuses them with status 6.  Blank or empty text is zero.  0, 1 overflow,
   2 malformed, 6 digits lost. */
int com__subchartoexctnume(char *cp, int len, CS_BYTE **dest, CS_INT *destlen, CS_BYTE *precision,
                           CS_BYTE *scale, int flag);

/* The value as "-", integer digits (at least one) and exactly scale decimals,
   written backward so that it ends at dest[destlen - 1]; no NUL.  Returns the
   index of the first character, or -1 when it does not fit. */
int com__subexctnumetochar(__CONSTANT *srcconst, char *dest, int destlen);

/* The value as the nearest double of its decimal text.  len 0 is status 0
   with nothing written; 1 when the text cannot be made. */
int com__subexctnumetoflt8(__CONSTANT *numeval, CS_FLOAT *flt8);

/* The integer part (cut toward zero).  len 0 is status 0 with nothing
   written.  Signed: 1 above the range (maximum stored), 5 below (minimum).
   Unsigned: 1 above (all ones), 5 for a negative value (0 stored). */
int com__subexctnumetolonglong(__CONSTANT *numeval, CS_BIGINT *longval);
int com__subexctnumetoulonglong(__CONSTANT *numeval, CS_UBIGINT *longval);

/* A double through its 17-digit "%g" text, rounded half away from zero at
   *scale.  A derived precision becomes the largest of destlen and the scale
   0.  1 when it does not fit; 2 for an infinity or a NaN. */
int com__doubletoexctnume(CS_FLOAT flt8val, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale);

/* The value rounded half away from zero to 4 decimals as a CS_MONEY at dest.
   1 done, 0 out of range (note: the reverse of a status). */
int com__exctnumetomny8(__CONSTANT *numeval, CS_BYTE *dest);

/* A money value at *scale decimals (rounded half away from zero when fewer
   than 4): a derived precision becomes the largest of destlen, a scale above
   77 becomes 0.  0, or 1 when it does not fit. */
int com__mny8toexctnume(CS_MONEY *mnyptr, CS_BYTE *dest, int destlen, CS_BYTE *precision, CS_BYTE *scale,
                        int flag);

} /* extern "C" */

#endif
