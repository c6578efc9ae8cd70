/*
** Exact numeric arithmetic on CS_NUMERIC / CS_DECIMAL records, and the
** conversions of the integer types into them.
**
** A record is valid when precision is 1..77 and scale at most 77 (a scale
** above the precision is allowed).  Its value occupies comn_num_getlen(
** precision) bytes of array: a sign byte (non-zero is negative) and a
** big-endian base-256 magnitude below 10^precision.
*/
#ifndef KESCOMN_NUMERIC_H
#define KESCOMN_NUMERIC_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* oper1 + oper2 (operation 0) or oper1 - oper2 (operation 1; anything else
   is an assertion).  The operands are first aligned to a common precision
   and scale; result gets precision max(p - s) + max(s) + 1 (at most 77) and
   the larger scale, lowered if the integer digits need the room.  Its
   precision and scale are written before any failure.  CS_EDOMAIN for an
   invalid operand, CS_EOVERFLOW when the sum does not fit (the bytes are
   then cleared). */
KES_API CS_RETCODE comn_num_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result,
                                     CS_INT operation);
/* comn_num_addorsub with operation 0 and 1. */
KES_API CS_RETCODE comn_numadd(CS_NUMERIC *add1p, CS_NUMERIC *add2p, CS_NUMERIC *sump);
KES_API CS_RETCODE comn_numsub(CS_NUMERIC *minp, CS_NUMERIC *subp, CS_NUMERIC *diffp);

/* m1 * m2 at scale s1 + s2 and p1 - s1 + p2 - s2 + 1 integer digits, both
   capped at 77 (scale first gives way).  A non-zero digit that the capped
   scale would drop is CS_EOVERFLOW, never rounded.  CS_EDOMAIN for an
   invalid operand. */
KES_API CS_RETCODE comn_nummul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result);

/* dividend / divisor, truncated toward zero, at scale max(6, p1 + s2 + 1)
   (at most 77) with p1 - s1 + s2 integer digits.  CS_EDIVZERO for a zero
   divisor (only the precision and scale of quot are written), CS_EOVERFLOW
   when the quotient or the 132-byte work area of the division does not
   suffice (a wide dividend with a long shift), CS_EDOMAIN for an invalid
   operand. */
KES_API CS_RETCODE comn_numdivide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot);

/* -1, 0 or 1 by value, signs and scales honoured; a negative zero equals
   zero.  When aligning the scales would need more than 77 digits the finer
   operand is cut to the coarser scale instead. */
KES_API CS_INT comn_numcmp(CS_NUMERIC *n1, CS_NUMERIC *n2);

/* The bytes a value of this precision (1..77) occupies, sign byte included. */
KES_API CS_INT comn_num_getlen(CS_INT precision);

/* The largest precision that a value of this many bytes (2..33) holds; 0 and
   1 give 0, other lengths are an assertion. */
KES_API CS_INT comn_num_getprec(CS_INT length);

/* ---- integers to numeric ------------------------------------------------
** *destlen (comn_) is 35 and dest->len (comnb_) dest->maxlen before any
** check.  CS_EPRECISION for a precision outside 1..77, CS_ESCALE for a scale
** above 77; CS_EOVERFLOW when value * 10^scale needs more than precision
** digits.  comn_i8tonum and comn_ui8tonum also take CS_SRC_VALUE in the
** destination's precision or scale: that field of destfmt becomes 255, and a
** precision so marked stores the value in 10 bytes at precision 21, scale 0.
*/
KES_COMN_CONV(comn_i1tonum);
KES_COMN_CONV(comn_i2tonum);
KES_COMN_CONV(comn_i4tonum);
KES_COMN_CONV(comn_i8tonum);
KES_COMN_CONV(comn_ui2tonum);
KES_COMN_CONV(comn_ui4tonum);
KES_COMN_CONV(comn_ui8tonum);
KES_COMN_CONV(comn_bittonum);
KES_COMNB_CONV(comnb_i1tonum);
KES_COMNB_CONV(comnb_i2tonum);
KES_COMNB_CONV(comnb_i4tonum);
KES_COMNB_CONV(comnb_i8tonum);
KES_COMNB_CONV(comnb_ui2tonum);
KES_COMNB_CONV(comnb_ui4tonum);
KES_COMNB_CONV(comnb_ui8tonum);
KES_COMNB_CONV(comnb_bittonum);

KES_END_DECLS

#endif /* KESCOMN_NUMERIC_H */
