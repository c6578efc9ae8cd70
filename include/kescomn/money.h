/*
** Money arithmetic and text.  A CS_MONEY counts ten-thousandths in one 64-bit
** two's complement integer stored high half first (-922337203685477.5808 to
** 922337203685477.5807); a CS_MONEY4 counts them in a CS_INT (-214748.3648
** to 214748.3647).
**
** Every operation exists twice: comn_ returns a CS_RETCODE, com_ the raw
** status (0 done, 1 overflow, 2 malformed, 3 division by zero).  "Mapped"
** below: 0 is CS_SUCCEED, 1 CS_EOVERFLOW, 2 CS_ESYNTAX, 3 CS_EDIVZERO.
** Sums and products round half away from zero; quotients are cut toward zero.
*/
#ifndef KESCOMN_MONEY_H
#define KESCOMN_MONEY_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* mp2 = mp1.  Mapped (always CS_SUCCEED). */
KES_API CS_RETCODE comn_mnycopy(CS_MONEY *mp1, CS_MONEY *mp2);
KES_API CS_INT com_mnycopy(CS_MONEY *mp1, CS_MONEY *mp2);

/* mp = |mp| / 10^trim, rounded by the last removed digit; -1 when the value
   was negative, else 0 (the sign is the caller's to keep). */
KES_API CS_INT comn_mnyinit(CS_MONEY *mp, CS_INT trim);
KES_API CS_INT com_mnyinit(CS_MONEY *mp, CS_INT trim);

/* The lowest decimal digit of the non-negative mp as a character in *value,
   then mp /= 10; 1 while something remains, else 0. */
KES_API CS_INT comn_mnyndigit(CS_MONEY *mp, CS_CHAR *value);
KES_API CS_INT com_mnyndigit(CS_MONEY *mp, CS_CHAR *value);

/* +1 and -1 unit.  Past a limit the value wraps and the result is
   CS_EOVERFLOW (status 1). */
KES_API CS_RETCODE comn_mnyinc(CS_MONEY *mp);
KES_API CS_INT com_mnyinc(CS_MONEY *mp);
KES_API CS_RETCODE comn_mnydec(CS_MONEY *mp);
KES_API CS_INT com_mnydec(CS_MONEY *mp);

/* omp = -imp; the most negative value overflows and is stored as itself. */
KES_API CS_RETCODE comn_mnyminus(CS_MONEY *imp, CS_MONEY *omp);
KES_API CS_INT com_mnyminus(CS_MONEY *imp, CS_MONEY *omp);

/* Divides the magnitude in place by dvsr (1 to 65535; 0 changes nothing) and
   returns the non-negative remainder. */
KES_API CS_INT comn_mnydown(CS_MONEY *mp, CS_INT dvsr);
KES_API CS_INT com_mnydown(CS_MONEY *mp, CS_INT dvsr);

/* mp = |mp| * mpier + add with mp's sign, or add when mpier is 0.  Mapped;
   on overflow mp is unchanged. */
KES_API CS_RETCODE comn_mnyscale(CS_MONEY *mp, CS_INT mpier, CS_INT add);
KES_API CS_INT com_mnyscale(CS_MONEY *mp, CS_INT mpier, CS_INT add);

/* Sum and difference; on overflow the result is zero.  Mapped. */
KES_API CS_RETCODE comn_mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump);
KES_API CS_INT com_mnyadd(CS_MONEY *add1p, CS_MONEY *add2p, CS_MONEY *sump);
KES_API CS_RETCODE comn_mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp);
KES_API CS_INT com_mnysub(CS_MONEY *minp, CS_MONEY *subp, CS_MONEY *difp);

/* m3 = m1 / m2 cut toward zero.  A zero divisor zeroes m3 (CS_EDIVZERO).
   Mapped. */
KES_API CS_RETCODE comn_mnydivide(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);
KES_API CS_INT com_mnydivide(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);

/* m3 = m1 * m2 rounded half away from zero; a product below one unit is
   zero.  On overflow m3 is unchanged.  Mapped. */
KES_API CS_RETCODE comn_mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);
KES_API CS_INT com_mnymul(CS_MONEY *m1, CS_MONEY *m2, CS_MONEY *m3);

/* The largest and the most negative value. */
KES_API void comn_mnymaxpos(CS_MONEY *mp);
KES_API void com_mnymaxpos(CS_MONEY *mp);
KES_API void comn_mnymaxneg(CS_MONEY *mp);
KES_API void com_mnymaxneg(CS_MONEY *mp);

/* -1, 0 or 1. */
KES_API CS_INT comn_mnycmp(CS_MONEY *m1, CS_MONEY *m2);
KES_API CS_INT com_mnycmp(CS_MONEY *m1, CS_MONEY *m2);

/* mnyptr = 0. */
KES_API void comn_mnyzero(CS_MONEY *mnyptr);
KES_API void com_mnyzero(CS_MONEY *mnyptr);

/* res = the 64-bit pattern of num / den->mnylow, unsigned, no scale.  A zero
   divisor leaves res alone. */
KES_API void comn_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res);
KES_API void com_mnyxdiv(CS_MONEY *num, CS_MONEY *den, CS_MONEY *res);

/* ---- CS_MONEY4 ------------------------------------------------------------ */

/* mp2 = mp1: CS_SUCCEED, and 0 from the com_ form. */
KES_API CS_RETCODE comn_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2);
KES_API CS_INT com_mny4copy(CS_MONEY4 *mp1, CS_MONEY4 *mp2);
/* omp = -imp; the most negative value overflows and omp is not written. */
KES_API CS_RETCODE comn_mny4minus(CS_MONEY4 *imp, CS_MONEY4 *omp);
KES_API CS_INT com_mny4minus(CS_MONEY4 *imp, CS_MONEY4 *omp);
/* As the CS_MONEY forms, computed on CS_MONEY and narrowed; any failure
   zeroes the result. */
KES_API CS_RETCODE comn_mny4add(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump);
KES_API CS_INT com_mny4add(CS_MONEY4 *add1p, CS_MONEY4 *add2p, CS_MONEY4 *sump);
KES_API CS_RETCODE comn_mny4sub(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp);
KES_API CS_INT com_mny4sub(CS_MONEY4 *minp, CS_MONEY4 *subp, CS_MONEY4 *difp);
KES_API CS_RETCODE comn_mny4divide(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
KES_API CS_INT com_mny4divide(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
KES_API CS_RETCODE comn_mny4mul(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
KES_API CS_INT com_mny4mul(CS_MONEY4 *m1, CS_MONEY4 *m2, CS_MONEY4 *m3);
/* -1, 0 or 1. */
KES_API CS_INT comn_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2);
KES_API CS_INT com_mny4cmp(CS_MONEY4 *m1, CS_MONEY4 *m2);
/* mny4ptr = 0. */
KES_API void comn_mny4zero(CS_MONEY4 *mny4ptr);
KES_API void com_mny4zero(CS_MONEY4 *mny4ptr);

/* ---- text ------------------------------------------------------------------ */

/* Writes the value right-aligned into the len bytes at cp (no NUL) and
   returns its first character, or null when it does not fit.  style 1 asks
   for "," groups, style >> 8 for the decimals (0: 2; 4 or more: 4), rounded
   by the last removed digit.  The point is always "."; no currency sign. */
KES_API CS_CHAR *com_cvtmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style);
KES_API CS_CHAR *com_cvtmny4tochar(CS_MONEY4 *m4p, CS_CHAR *cp, CS_INT len, CS_INT style);
/* com_cvtmnytochar with prec decimals: style | prec << 8. */
KES_API CS_CHAR *com_precmnytochar(CS_MONEY *mp, CS_CHAR *cp, CS_INT len, CS_INT style, CS_INT prec);

/* ---- integers to money ----------------------------------------------------
** value * 10000: *destlen (or dest->len) 8 or 4, CS_EOVERFLOW when it does
** not fit.  Bit to money exists in the server layer alone and answers
** CS_EDOMAIN for a byte other than 0 or 1. */
#define KES_INT_TO_MONEY(p)                 \
    KES_COMN_CONV(comn_##p##tomoney);       \
    KES_COMN_CONV(comn_##p##tomny4);        \
    KES_COMNB_CONV(comnb_##p##tomoney);     \
    KES_COMNB_CONV(comnb_##p##tomny4)
KES_INT_TO_MONEY(i1);
KES_INT_TO_MONEY(i2);
KES_INT_TO_MONEY(i4);
KES_INT_TO_MONEY(i8);
KES_INT_TO_MONEY(ui2);
KES_INT_TO_MONEY(ui4);
KES_INT_TO_MONEY(ui8);
#undef KES_INT_TO_MONEY
KES_COMNB_CONV(comnb_bittomoney);
KES_COMNB_CONV(comnb_bittomny4);

KES_END_DECLS

#endif /* KESCOMN_MONEY_H */
