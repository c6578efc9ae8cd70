/*
** Text to numbers and bytes: the character family (CS_CHAR, CS_LONGCHAR,
** CS_TEXT, ...) to every integer type, CS_BIT, CS_REAL, CS_FLOAT and to
** binary through hexadecimal digits.
**
** Integer text is blanks, one optional sign, decimal digits, blanks; blank
** text is 0.  A syntax error returns CS_ESYNTAX with *destlen 0 (the server
** layer keeps dest->len at the type's size) and leaves the value read so far
** in the destination.  Overflow returns CS_EOVERFLOW: the 64-bit and unsigned
** 32-bit types store their limit, CS_INT keeps the digits read so far, and
** the 8- and 16-bit types store the low bits of the 32-bit reading.
*/
#ifndef KESCOMN_CONV_SCAN_H
#define KESCOMN_CONV_SCAN_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Text to integers.  The context layer reads srcfmt->maxlength bytes (at least
   1) with the attributes of com_intl_charattr; the server layer reads
   src->len bytes (0 gives 0) with context->char_attrib. */
KES_COMN_CONV(comn_chartoi1);
KES_COMN_CONV(comn_chartoi2);
KES_COMN_CONV(comn_chartoi4);
KES_COMN_CONV(comn_chartoi8);
KES_COMN_CONV(comn_chartoui2);
KES_COMN_CONV(comn_chartoui4);
KES_COMN_CONV(comn_chartoui8);
KES_COMNB_CONV(comnb_chartoi1);
KES_COMNB_CONV(comnb_chartoi2);
KES_COMNB_CONV(comnb_chartoi4);
KES_COMNB_CONV(comnb_chartoi8);
KES_COMNB_CONV(comnb_chartoui2);
KES_COMNB_CONV(comnb_chartoui4);
KES_COMNB_CONV(comnb_chartoui8);

/* Integer text as a bit: 1 for any value but 0.  Overflow leaves the
   destination unwritten. */
KES_COMN_CONV(comn_chartobit);
/* Bytes only: signs and blanks, digits of any length, blanks; more than one
   sign is CS_ESYNTAX.  Any digit but "0" makes 1. */
KES_COMNB_CONV(comnb_chartobit);

/* Text to floats by the C library's number grammar (hexadecimal, "inf",
   "nan" included) after trailing white space.  Text of 1024 bytes or more is
   CS_ESYNTAX.  0 from an out-of-range exponent is CS_EUNDERFLOW; infinite
   results store the largest finite value of the sign with CS_EOVERFLOW, as
   do CS_REAL values beyond its range.  On a syntax error a CS_FLOAT
   destination holds the value of the leading part. */
KES_COMN_CONV(comn_chartoflt4);
KES_COMN_CONV(comn_chartoflt8);
KES_COMNB_CONV(comnb_chartoflt4);
KES_COMNB_CONV(comnb_chartoflt8);

/* Hexadecimal text to bytes, after white space at both ends and an optional
   "0x": an odd digit count puts the first digit alone in the first byte.
   Digits left when destfmt->maxlength bytes are full give CS_TRUNCATED with no
   fill; an odd count into no room is CS_EOVERFLOW; a bad digit CS_ESYNTAX with
   *destlen 0.  Otherwise the binary fill of destfmt->format applies. */
KES_COMN_CONV(comn_chartobin);
/* The same into the 256 bytes of a CS_VARBINARY (*destlen 258, no fill); a
   bad odd first digit is not refused but stores 0xFF. */
KES_COMN_CONV(comn_chartovarbin);

/* CS_VARCHAR sources: the same members reading len bytes of str (the server
   layer takes src->value and src->len as for text).  Differences: hexadecimal
   digits left over are CS_EOVERFLOW; into a CS_VARBINARY an odd first digit is
   tested, a cut leaves *destlen at the bytes stored, and filling
   destfmt->maxlength bytes or more is CS_EOVERFLOW. */
KES_COMN_CONV(comn_varchartoi1);
KES_COMN_CONV(comn_varchartoi2);
KES_COMN_CONV(comn_varchartoi4);
KES_COMN_CONV(comn_varchartoi8);
KES_COMN_CONV(comn_varchartoui2);
KES_COMN_CONV(comn_varchartoui4);
KES_COMN_CONV(comn_varchartoui8);
KES_COMN_CONV(comn_varchartobit);
KES_COMN_CONV(comn_varchartoflt4);
KES_COMN_CONV(comn_varchartoflt8);
KES_COMN_CONV(comn_varchartobin);
KES_COMN_CONV(comn_varchartovarbin);
KES_COMNB_CONV(comnb_varchartoi1);
KES_COMNB_CONV(comnb_varchartoi2);
KES_COMNB_CONV(comnb_varchartoi4);
KES_COMNB_CONV(comnb_varchartoi8);
KES_COMNB_CONV(comnb_varchartoui2);
KES_COMNB_CONV(comnb_varchartoui4);
KES_COMNB_CONV(comnb_varchartoui8);
KES_COMNB_CONV(comnb_varchartobit);
KES_COMNB_CONV(comnb_varchartoflt4);
KES_COMNB_CONV(comnb_varchartoflt8);

KES_END_DECLS

#endif /* KESCOMN_CONV_SCAN_H */
