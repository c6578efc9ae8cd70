/*
** Integer and bit conversions: CS_TINYINT (unsigned, 0..255), CS_SMALLINT,
** CS_INT, CS_BIGINT, CS_USMALLINT, CS_UINT, CS_UBIGINT and CS_BIT to each
** other, to floats, text, binary and CS_VARCHAR/CS_VARBINARY.
**
** At the edge of a range the saturated value is stored and the code tells:
** CS_EOVERFLOW above, CS_EOVERFLOW or CS_EUNDERFLOW below (the two layers
** differ; see the tests for the full table).  A bit source other than 0 or 1
** is CS_EDOMAIN before anything is written.
*/
#ifndef KESCOMN_CONV_INT_H
#define KESCOMN_CONV_INT_H

#include "kescomn/types.h"

KES_BEGIN_DECLS


/* from i1 */
KES_COMN_CONV(comn_i1toi1);
KES_COMN_CONV(comn_i1toi2);
KES_COMN_CONV(comn_i1toi4);
KES_COMN_CONV(comn_i1toi8);
KES_COMN_CONV(comn_i1toui2);
KES_COMN_CONV(comn_i1toui4);
KES_COMN_CONV(comn_i1toui8);
KES_COMN_CONV(comn_i1tobit);
KES_COMN_CONV(comn_i1toflt4);
KES_COMN_CONV(comn_i1toflt8);
KES_COMN_CONV(comn_i1tochar);
KES_COMN_CONV(comn_i1tovarchar);
KES_COMN_CONV(comn_i1tobin);
KES_COMN_CONV(comn_i1tovarbin);
KES_COMNB_CONV(comnb_i1toi1);
KES_COMNB_CONV(comnb_i1toi2);
KES_COMNB_CONV(comnb_i1toi4);
KES_COMNB_CONV(comnb_i1toi8);
KES_COMNB_CONV(comnb_i1toui2);
KES_COMNB_CONV(comnb_i1toui4);
KES_COMNB_CONV(comnb_i1toui8);
KES_COMNB_CONV(comnb_i1tobit);
KES_COMNB_CONV(comnb_i1toflt4);
KES_COMNB_CONV(comnb_i1toflt8);
KES_COMNB_CONV(comnb_i1tochar);
KES_COMNB_CONV(comnb_i1tovarchar);

/* from i2 */
KES_COMN_CONV(comn_i2toi1);
KES_COMN_CONV(comn_i2toi2);
KES_COMN_CONV(comn_i2toi4);
KES_COMN_CONV(comn_i2toi8);
KES_COMN_CONV(comn_i2toui2);
KES_COMN_CONV(comn_i2toui4);
KES_COMN_CONV(comn_i2toui8);
KES_COMN_CONV(comn_i2tobit);
KES_COMN_CONV(comn_i2toflt4);
KES_COMN_CONV(comn_i2toflt8);
KES_COMN_CONV(comn_i2tochar);
KES_COMN_CONV(comn_i2tovarchar);
KES_COMN_CONV(comn_i2tobin);
KES_COMN_CONV(comn_i2tovarbin);
KES_COMNB_CONV(comnb_i2toi1);
KES_COMNB_CONV(comnb_i2toi2);
KES_COMNB_CONV(comnb_i2toi4);
KES_COMNB_CONV(comnb_i2toi8);
KES_COMNB_CONV(comnb_i2toui2);
KES_COMNB_CONV(comnb_i2toui4);
KES_COMNB_CONV(comnb_i2toui8);
KES_COMNB_CONV(comnb_i2tobit);
KES_COMNB_CONV(comnb_i2toflt4);
KES_COMNB_CONV(comnb_i2toflt8);
KES_COMNB_CONV(comnb_i2tochar);
KES_COMNB_CONV(comnb_i2tovarchar);

/* from i4 */
KES_COMN_CONV(comn_i4toi1);
KES_COMN_CONV(comn_i4toi2);
KES_COMN_CONV(comn_i4toi4);
KES_COMN_CONV(comn_i4toi8);
KES_COMN_CONV(comn_i4toui2);
KES_COMN_CONV(comn_i4toui4);
KES_COMN_CONV(comn_i4toui8);
KES_COMN_CONV(comn_i4tobit);
KES_COMN_CONV(comn_i4toflt4);
KES_COMN_CONV(comn_i4toflt8);
KES_COMN_CONV(comn_i4tochar);
KES_COMN_CONV(comn_i4tovarchar);
KES_COMN_CONV(comn_i4tobin);
KES_COMN_CONV(comn_i4tovarbin);
KES_COMNB_CONV(comnb_i4toi1);
KES_COMNB_CONV(comnb_i4toi2);
KES_COMNB_CONV(comnb_i4toi4);
KES_COMNB_CONV(comnb_i4toi8);
KES_COMNB_CONV(comnb_i4toui2);
KES_COMNB_CONV(comnb_i4toui4);
KES_COMNB_CONV(comnb_i4toui8);
KES_COMNB_CONV(comnb_i4tobit);
KES_COMNB_CONV(comnb_i4toflt4);
KES_COMNB_CONV(comnb_i4toflt8);
KES_COMNB_CONV(comnb_i4tochar);
KES_COMNB_CONV(comnb_i4tovarchar);

/* from i8 */
KES_COMN_CONV(comn_i8toi1);
KES_COMN_CONV(comn_i8toi2);
KES_COMN_CONV(comn_i8toi4);
KES_COMN_CONV(comn_i8toi8);
KES_COMN_CONV(comn_i8toui2);
KES_COMN_CONV(comn_i8toui4);
KES_COMN_CONV(comn_i8toui8);
KES_COMN_CONV(comn_i8tobit);
KES_COMN_CONV(comn_i8toflt4);
KES_COMN_CONV(comn_i8toflt8);
KES_COMN_CONV(comn_i8tochar);
KES_COMN_CONV(comn_i8tovarchar);
KES_COMN_CONV(comn_i8tobin);
KES_COMN_CONV(comn_i8tovarbin);
KES_COMNB_CONV(comnb_i8toi1);
KES_COMNB_CONV(comnb_i8toi2);
KES_COMNB_CONV(comnb_i8toi4);
KES_COMNB_CONV(comnb_i8toi8);
KES_COMNB_CONV(comnb_i8toui2);
KES_COMNB_CONV(comnb_i8toui4);
KES_COMNB_CONV(comnb_i8toui8);
KES_COMNB_CONV(comnb_i8tobit);
KES_COMNB_CONV(comnb_i8toflt4);
KES_COMNB_CONV(comnb_i8toflt8);
KES_COMNB_CONV(comnb_i8tochar);
KES_COMNB_CONV(comnb_i8tovarchar);

/* from ui2 */
KES_COMN_CONV(comn_ui2toi1);
KES_COMN_CONV(comn_ui2toi2);
KES_COMN_CONV(comn_ui2toi4);
KES_COMN_CONV(comn_ui2toi8);
KES_COMN_CONV(comn_ui2toui2);
KES_COMN_CONV(comn_ui2toui4);
KES_COMN_CONV(comn_ui2toui8);
KES_COMN_CONV(comn_ui2tobit);
KES_COMN_CONV(comn_ui2toflt4);
KES_COMN_CONV(comn_ui2toflt8);
KES_COMN_CONV(comn_ui2tochar);
KES_COMN_CONV(comn_ui2tovarchar);
KES_COMN_CONV(comn_ui2tobin);
KES_COMN_CONV(comn_ui2tovarbin);
KES_COMNB_CONV(comnb_ui2toi1);
KES_COMNB_CONV(comnb_ui2toi2);
KES_COMNB_CONV(comnb_ui2toi4);
KES_COMNB_CONV(comnb_ui2toi8);
KES_COMNB_CONV(comnb_ui2toui2);
KES_COMNB_CONV(comnb_ui2toui4);
KES_COMNB_CONV(comnb_ui2toui8);
KES_COMNB_CONV(comnb_ui2tobit);
KES_COMNB_CONV(comnb_ui2toflt4);
KES_COMNB_CONV(comnb_ui2toflt8);
KES_COMNB_CONV(comnb_ui2tochar);
KES_COMNB_CONV(comnb_ui2tovarchar);

/* from ui4 */
KES_COMN_CONV(comn_ui4toi1);
KES_COMN_CONV(comn_ui4toi2);
KES_COMN_CONV(comn_ui4toi4);
KES_COMN_CONV(comn_ui4toi8);
KES_COMN_CONV(comn_ui4toui2);
KES_COMN_CONV(comn_ui4toui4);
KES_COMN_CONV(comn_ui4toui8);
KES_COMN_CONV(comn_ui4tobit);
KES_COMN_CONV(comn_ui4toflt4);
KES_COMN_CONV(comn_ui4toflt8);
KES_COMN_CONV(comn_ui4tochar);
KES_COMN_CONV(comn_ui4tovarchar);
KES_COMN_CONV(comn_ui4tobin);
KES_COMN_CONV(comn_ui4tovarbin);
KES_COMNB_CONV(comnb_ui4toi1);
KES_COMNB_CONV(comnb_ui4toi2);
KES_COMNB_CONV(comnb_ui4toi4);
KES_COMNB_CONV(comnb_ui4toi8);
KES_COMNB_CONV(comnb_ui4toui2);
KES_COMNB_CONV(comnb_ui4toui4);
KES_COMNB_CONV(comnb_ui4toui8);
KES_COMNB_CONV(comnb_ui4tobit);
KES_COMNB_CONV(comnb_ui4toflt4);
KES_COMNB_CONV(comnb_ui4toflt8);
KES_COMNB_CONV(comnb_ui4tochar);
KES_COMNB_CONV(comnb_ui4tovarchar);

/* from ui8 */
KES_COMN_CONV(comn_ui8toi1);
KES_COMN_CONV(comn_ui8toi2);
KES_COMN_CONV(comn_ui8toi4);
KES_COMN_CONV(comn_ui8toi8);
KES_COMN_CONV(comn_ui8toui2);
KES_COMN_CONV(comn_ui8toui4);
KES_COMN_CONV(comn_ui8toui8);
KES_COMN_CONV(comn_ui8tobit);
KES_COMN_CONV(comn_ui8toflt4);
KES_COMN_CONV(comn_ui8toflt8);
KES_COMN_CONV(comn_ui8tochar);
KES_COMN_CONV(comn_ui8tovarchar);
KES_COMN_CONV(comn_ui8tobin);
KES_COMN_CONV(comn_ui8tovarbin);
KES_COMNB_CONV(comnb_ui8toi1);
KES_COMNB_CONV(comnb_ui8toi2);
KES_COMNB_CONV(comnb_ui8toi4);
KES_COMNB_CONV(comnb_ui8toi8);
KES_COMNB_CONV(comnb_ui8toui2);
KES_COMNB_CONV(comnb_ui8toui4);
KES_COMNB_CONV(comnb_ui8toui8);
KES_COMNB_CONV(comnb_ui8tobit);
KES_COMNB_CONV(comnb_ui8toflt4);
KES_COMNB_CONV(comnb_ui8toflt8);
KES_COMNB_CONV(comnb_ui8tochar);
KES_COMNB_CONV(comnb_ui8tovarchar);

/* from bit */
KES_COMN_CONV(comn_bittoi1);
KES_COMN_CONV(comn_bittoi2);
KES_COMN_CONV(comn_bittoi4);
KES_COMN_CONV(comn_bittoi8);
KES_COMN_CONV(comn_bittoui2);
KES_COMN_CONV(comn_bittoui4);
KES_COMN_CONV(comn_bittoui8);
KES_COMN_CONV(comn_bittobit);
KES_COMN_CONV(comn_bittoflt4);
KES_COMN_CONV(comn_bittoflt8);
KES_COMN_CONV(comn_bittochar);
KES_COMN_CONV(comn_bittovarchar);
KES_COMN_CONV(comn_bittobin);
KES_COMN_CONV(comn_bittovarbin);
KES_COMNB_CONV(comnb_bittoi1);
KES_COMNB_CONV(comnb_bittoi2);
KES_COMNB_CONV(comnb_bittoi4);
KES_COMNB_CONV(comnb_bittoi8);
KES_COMNB_CONV(comnb_bittoui2);
KES_COMNB_CONV(comnb_bittoui4);
KES_COMNB_CONV(comnb_bittoui8);
KES_COMNB_CONV(comnb_bittobit);
KES_COMNB_CONV(comnb_bittoflt4);
KES_COMNB_CONV(comnb_bittoflt8);
KES_COMNB_CONV(comnb_bittochar);
KES_COMNB_CONV(comnb_bittovarchar);

KES_END_DECLS

#endif /* KESCOMN_CONV_INT_H */
