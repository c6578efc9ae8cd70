/*
** Conversions of exact numerics (CS_NUMERIC, CS_DECIMAL) and money
** (CS_MONEY, CS_MONEY4) to and from the other number types, text and bytes.
**
** A numeric source whose precision is outside 1..77 or whose scale is above
** 77 is CS_EDOMAIN.  A numeric destination's precision must be 1..77
** (CS_EPRECISION) and its scale at most 77 (CS_ESCALE); *destlen is 35.
*/
#ifndef KESCOMN_NUMCONV_H
#define KESCOMN_NUMCONV_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* ---- numeric to every type ---------------------------------------------------
** Integers, bit and floats go through the double of the value's decimal text
** (i8 and ui8 through the text itself).  Out of range the destination gets
** the nearest limit and CS_EOVERFLOW; a negative value into ui2 or ui4 stores
** 0 with CS_EUNDERFLOW (server layer: CS_EOVERFLOW), into ui8 CS_EUNDERFLOW,
** below i8 CS_EUNDERFLOW.  Decimals are cut; the server layer then answers
** CS_TRUNCATED.  Money rounds half away from zero to 4 decimals.  Text is
** "-", integer digits and exactly scale decimals; a negative value at scale
** 77 has no text and is an assertion.  The server layer's text that loses
** only decimals is CS_TRUNCATED, anything more CS_EOVERFLOW.  Binary is the
** 33 bytes of array. */
#define KES_NUM_TO(p)                     \
    KES_COMN_CONV(comn_numto##p);         \
    KES_COMNB_CONV(comnb_numto##p)
KES_NUM_TO(bit);
KES_NUM_TO(i1);
KES_NUM_TO(i2);
KES_NUM_TO(i4);
KES_NUM_TO(i8);
KES_NUM_TO(ui2);
KES_NUM_TO(ui4);
KES_NUM_TO(ui8);
KES_NUM_TO(flt4);
KES_NUM_TO(flt8);
KES_NUM_TO(money);
KES_NUM_TO(mny4);
KES_NUM_TO(char);
KES_NUM_TO(varchar);
#undef KES_NUM_TO
KES_COMN_CONV(comn_numtobin);
KES_COMN_CONV(comn_numtovarbin);

/* Numeric to numeric.  comn_: CS_SRC_VALUE takes the source's precision or
   scale; the value is copied at its present scale first, so a value that
   would only fit after losing decimals is CS_EOVERFLOW; lost decimals are
   CS_TRUNCATED with the cut value stored.  comnb_: no CS_SRC_VALUE; the shift
   happens before the fit, lost decimals are CS_TRUNCATED (destination not
   written when it is shorter than the source) unless bit 1 of flags
   tolerates them. */
KES_COMN_CONV(comn_numtonum);
KES_COMNB_CONV(comnb_numtonum);

/* ---- into numeric ---------------------------------------------------------------
** Text: blanks, one sign, blanks, digits with one ".", an optional exponent
** ("e" or "E", a sign, digits; white space behind it only after two digits),
** trailing white space.  CS_SRC_VALUE in precision or scale (comn_ only)
** takes the text's.  Digits past the scale are CS_EOVERFLOW in comn_ and
** CS_TRUNCATED in comnb_, where bit 1 of flags rounds them away half up
** instead.  Malformed text is CS_ESYNTAX; the comn_ text is at most 1023
** bytes.  Floats go through their 17-digit text and round half away from
** zero; money rounds likewise when the scale is below 4. */
KES_COMN_CONV(comn_chartonum);
KES_COMN_CONV(comn_varchartonum);
KES_COMNB_CONV(comnb_chartonum);
KES_COMN_CONV(comn_flt4tonum);
KES_COMN_CONV(comn_flt8tonum);
KES_COMNB_CONV(comnb_flt4tonum);
KES_COMNB_CONV(comnb_flt8tonum);
KES_COMN_CONV(comn_moneytonum);
KES_COMN_CONV(comn_mny4tonum);
KES_COMNB_CONV(comnb_moneytonum);
KES_COMNB_CONV(comnb_mny4tonum);

/* ---- money to every type -------------------------------------------------------
** Integers round half away from zero and clamp with CS_EOVERFLOW (a negative
** value into ui2 or ui4 stores nothing); i8 and ui8 go through the two-decimal
** text, so they round twice.  Floats are exact to the double's precision.
** Text: comn_moneytochar has (precision << 8) as its style (decimals, 0
** meaning 2), varchar always 2 decimals; comnb_ takes the context's style
** and, with format bit 8, right-aligns the text at the end of the
** destination.  Binary is the 8 or 4 bytes as stored. */
#define KES_MONEY_TO(m, p)                 \
    KES_COMN_CONV(comn_##m##to##p);        \
    KES_COMNB_CONV(comnb_##m##to##p)
#define KES_MONEY_ROW(m)                                                                    \
    KES_MONEY_TO(m, bit);                                                                   \
    KES_MONEY_TO(m, i1);                                                                    \
    KES_MONEY_TO(m, i2);                                                                    \
    KES_MONEY_TO(m, i4);                                                                    \
    KES_MONEY_TO(m, i8);                                                                    \
    KES_MONEY_TO(m, ui2);                                                                   \
    KES_MONEY_TO(m, ui4);                                                                   \
    KES_MONEY_TO(m, ui8);                                                                   \
    KES_MONEY_TO(m, flt4);                                                                  \
    KES_MONEY_TO(m, flt8);                                                                  \
    KES_MONEY_TO(m, money);                                                                 \
    KES_MONEY_TO(m, mny4);                                                                  \
    KES_MONEY_TO(m, char);                                                                  \
    KES_MONEY_TO(m, varchar);                                                               \
    KES_COMN_CONV(comn_##m##tobin);                                                         \
    KES_COMN_CONV(comn_##m##tovarbin)
KES_MONEY_ROW(money);
KES_MONEY_ROW(mny4);
#undef KES_MONEY_ROW
#undef KES_MONEY_TO

/* Money text (com__mnyfromchar_mb grammar) into money: CS_EOVERFLOW out of
   range, CS_ESYNTAX when malformed. */
KES_COMN_CONV(comn_chartomoney);
KES_COMN_CONV(comn_chartomny4);
KES_COMN_CONV(comn_varchartomoney);
KES_COMN_CONV(comn_varchartomny4);
KES_COMNB_CONV(comnb_chartomoney);
KES_COMNB_CONV(comnb_chartomny4);

/* ---- legacy entries on raw buffers ------------------------------------------
** (src, srclen, dest, destlen[, precision, scale]).  A null src or a srclen
** of 0 returns 0.  Success returns the destination's length (35 for a
** numeric); failures are -1 overflow, -2 underflow, -3 syntax, -6 domain,
** -7 precision, -8 scale. */
#define KES_LEGACY_FROM_NUM(d) KES_API CS_INT com_numto##d(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
#define KES_LEGACY_TO_NUM(s)                                                                     \
    KES_API CS_INT com_##s##tonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision, \
                                  CS_INT scale)
KES_LEGACY_FROM_NUM(bit);
KES_LEGACY_FROM_NUM(i1);
KES_LEGACY_FROM_NUM(i2);
KES_LEGACY_FROM_NUM(i4);
KES_LEGACY_FROM_NUM(flt4);
KES_LEGACY_FROM_NUM(flt8);
KES_LEGACY_FROM_NUM(mny4);
KES_LEGACY_FROM_NUM(money);
/* The value's text (as comn_numtochar: "-", integer digits, exactly scale
   decimals), returning its length or -1 when it does not fit.  char: room
   destlen (-1 unbounded), blank fill to destlen.  string: room destlen (0
   unbounded), blank fill to destlen - 1 and a NUL in the last byte.
   ntbstring: the same room, a NUL right behind the text (-1 when the NUL
   has no room).  varychar: a 16-bit length, then the text in destlen bytes
   (-1 unbounded); on failure the length field holds 1. */
KES_LEGACY_FROM_NUM(char);
KES_LEGACY_FROM_NUM(string);
KES_LEGACY_FROM_NUM(ntbstring);
KES_LEGACY_FROM_NUM(varychar);
/* The 33 bytes of array, unchecked, through com_anytobinary and
   com_anytovarybin. */
KES_LEGACY_FROM_NUM(bin);
KES_LEGACY_FROM_NUM(varybin);
KES_LEGACY_TO_NUM(num);
KES_LEGACY_TO_NUM(bit);
KES_LEGACY_TO_NUM(i1);
KES_LEGACY_TO_NUM(i2);
KES_LEGACY_TO_NUM(i4);
KES_LEGACY_TO_NUM(flt4);
KES_LEGACY_TO_NUM(flt8);
KES_LEGACY_TO_NUM(mny4);
KES_LEGACY_TO_NUM(money);
/* Raw bytes as the 33-byte digit array, unchecked: precision and scale are
   stored, the smaller of srclen and 33 bytes copied, the rest cleared; 35.
   The vary form takes its length from a 2-byte prefix (0 returns 0). */
KES_LEGACY_TO_NUM(bin);
KES_LEGACY_TO_NUM(varybin);
#undef KES_LEGACY_TO_NUM
#undef KES_LEGACY_FROM_NUM
/* Text to numeric, strict, normalised through chatr when given: 35, -1 for
   an overflow or lost digits, -3 for bad text or text of 1024 bytes or more;
   precision outside 1..77 is CS_EPRECISION and scale outside 0..77
   CS_ESCALE, untranslated.  The vary form skips a 2-byte length (0 returns
   0) but reads srclen bytes behind it. */
KES_API CS_INT com_mb_chartonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision,
                                CS_INT scale, CS_ATTRIB *chatr);
KES_API CS_INT com_mb_varychartonum(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen, CS_INT precision,
                                    CS_INT scale, CS_ATTRIB *chatr);
/* A numeric null: with a value and len it is com_numtonum, otherwise the
   precision, scale and 33 zero bytes (35).  -7 / -8 for a bad precision or
   scale. */
KES_API CS_INT com_setnumnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len, CS_INT precision,
                              CS_INT scale);

KES_END_DECLS

#endif /* KESCOMN_NUMCONV_H */
