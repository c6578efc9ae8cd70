/*
** Text to text and the server layer's byte movers.
**
** Character sources and destinations are the character family (CS_CHAR,
** CS_LONGCHAR, CS_TEXT, CS_SENSITIVITY, CS_BOUNDARY, CS_XML) and CS_VARCHAR.
** In a multi-byte set a cut never splits a character: a character that does
** not fit whole is left out.  *destlen (dest->len) always counts the bytes
** stored, also with CS_TRUNCATED; a CS_VARCHAR destination reports 258.
*/
#ifndef KESCOMN_CONV_STRING_H
#define KESCOMN_CONV_STRING_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* The bytes of str (len of them) that fit in maxlen without splitting a
   character: len when len is below maxlen, else the whole characters from
   the start that stay within maxlen.  A null attrib is single-byte. */
KES_API CS_INT comnb_truncate_chars(CHAR_ATTRIB *attrib, CS_BYTE *str, CS_INT len, CS_INT maxlen);

/* Character text to character text: min(source, capacity) bytes, cut on a
   character boundary, then the fill of destfmt->format.  Format 1 with an
   exact fit puts the NUL over the last byte (CS_TRUNCATED, *destlen counts
   it); 32 doubles single quotes; 2 with 4 is CS_EFORMAT after the copy.
   src may equal dest, to fill a text in place.  Differing character sets of
   the two locales go through the character set converter. */
KES_COMN_CONV(comn_chartochar);

/* Character text to a CS_VARCHAR: at most 256 bytes, whatever
   destfmt->maxlength and format say; *destlen is 258. */
KES_COMN_CONV(comn_chartovarchar);

/* CS_VARCHAR (len 1 to 256) to character text: as comn_chartochar without
   quote doubling; an exact fit with format 1 is left to the fill. */
KES_COMN_CONV(comn_varchartochar);

/* CS_VARCHAR to CS_VARCHAR; len is read as unsigned and capped at 256. */
KES_COMN_CONV(comn_varchartovarchar);

/* Server layer: src->len bytes at src->value to dest->value of dest->maxlen,
   cut on a character boundary of context->char_attrib.  CS_TRUNCATED when
   cut.  The two text destinations end in the server fill (right-justify
   included); the two varchar destinations fill nothing.  Different locales
   on src and dest are an assertion failure: the server never translates here. */
KES_COMNB_CONV(comnb_chartochar);
KES_COMNB_CONV(comnb_varchartochar);
KES_COMNB_CONV(comnb_chartovarchar);
KES_COMNB_CONV(comnb_varchartovarchar);

/* Raw bytes to a fixed-length column: copy, then the server byte fill.
   CS_TRUNCATED (no fill) when cut; CS_EDOMAIN when the bytes land in a float
   column (type 59 or 62) and are not a finite number (they stay there). */
KES_COMNB_CONV(comnb_anytofixed);

/* Raw bytes to a variable-length column: copy; CS_TRUNCATED when cut. */
KES_COMNB_CONV(comnb_anytovar);

KES_END_DECLS

#endif /* KESCOMN_CONV_STRING_H */
