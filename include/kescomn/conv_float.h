/*
** Floating point conversions: CS_REAL (flt4) and CS_FLOAT (flt8) to every
** integer, to bit, to each other, to money, to text, CS_VARCHAR and binary.
**
** To an integer the value is tested against the destination's bounds before
** it is truncated toward zero (2.9 gives 2; no rounding).  Outside them the
** bound is stored and the code is CS_EOVERFLOW, or CS_EUNDERFLOW below an
** unsigned range in the comn_ layer (the comnb_ layer says CS_EOVERFLOW).
** Text is "%.17g" with ".5" for "0.5" and ".0" appended to a number without
** point or exponent ("3.0", "inf.0"); -0.0 prints as "0.0".
*/
#ifndef KESCOMN_CONV_FLOAT_H
#define KESCOMN_CONV_FLOAT_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* The members of one float source <p>, in both layers:
   to<int>    bounds first, then truncation; a NaN truncates with CS_SUCCEED.
              i8 and ui8 use the bounds +-9223372036854769664.0 and
              18446744073709500416.0 (from flt4: 9.22337e18, 1.84467e19 as
              singles); ui8 at or above 2^63 stores one less than exact.
   tobit      1 unless the value is +-0.0 (a NaN gives 1).
   toflt4     flt8 beyond the largest single stores +-FLT_MAX, CS_EOVERFLOW.
   toflt8     copy or widen.
   tomoney,
   tomny4     rounded half away from zero to 1/10000; CS_EOVERFLOW outside
              the range (comnb_flt4tomoney/tomny4 then set dest->len to 0).
   tochar     the text or, when it does not fit, "*" (capacity above 1) and
              CS_EOVERFLOW; comnb_ writes nothing then.
   tovarchar  the text in a CS_VARCHAR (*destlen 258); comnb_ CS_EOVERFLOW
              when dest->maxlen is short.
   tobin,
   tovarbin   (comn_ only) the 4 or 8 storage bytes. */
#define KES_FLOAT_MEMBERS(p)          \
    KES_COMN_CONV(comn_##p##toi1);      \
    KES_COMN_CONV(comn_##p##toi2);      \
    KES_COMN_CONV(comn_##p##toi4);      \
    KES_COMN_CONV(comn_##p##toi8);      \
    KES_COMN_CONV(comn_##p##toui2);     \
    KES_COMN_CONV(comn_##p##toui4);     \
    KES_COMN_CONV(comn_##p##toui8);     \
    KES_COMN_CONV(comn_##p##tobit);     \
    KES_COMN_CONV(comn_##p##toflt4);    \
    KES_COMN_CONV(comn_##p##toflt8);    \
    KES_COMN_CONV(comn_##p##tomoney);   \
    KES_COMN_CONV(comn_##p##tomny4);    \
    KES_COMN_CONV(comn_##p##tochar);    \
    KES_COMN_CONV(comn_##p##tovarchar); \
    KES_COMN_CONV(comn_##p##tobin);     \
    KES_COMN_CONV(comn_##p##tovarbin);  \
    KES_COMNB_CONV(comnb_##p##toi1);    \
    KES_COMNB_CONV(comnb_##p##toi2);    \
    KES_COMNB_CONV(comnb_##p##toi4);    \
    KES_COMNB_CONV(comnb_##p##toi8);    \
    KES_COMNB_CONV(comnb_##p##toui2);   \
    KES_COMNB_CONV(comnb_##p##toui4);   \
    KES_COMNB_CONV(comnb_##p##toui8);   \
    KES_COMNB_CONV(comnb_##p##tobit);   \
    KES_COMNB_CONV(comnb_##p##toflt4);  \
    KES_COMNB_CONV(comnb_##p##toflt8);  \
    KES_COMNB_CONV(comnb_##p##tomoney); \
    KES_COMNB_CONV(comnb_##p##tomny4);  \
    KES_COMNB_CONV(comnb_##p##tochar);  \
    KES_COMNB_CONV(comnb_##p##tovarchar)

KES_FLOAT_MEMBERS(flt4);
KES_FLOAT_MEMBERS(flt8);

#undef KES_FLOAT_MEMBERS

KES_END_DECLS

#endif /* KESCOMN_CONV_FLOAT_H */
