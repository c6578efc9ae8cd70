/*
** Binary sources: bytes reinterpreted as scalars (the machine's own byte
** order, no swapping), copied to binary, written as hexadecimal text; and the
** server layer's hexadecimal text of integers.
**
** A cut is CS_TRUNCATED from a CS_BINARY source (srcfmt->maxlength bytes) and
** CS_EOVERFLOW from a CS_VARBINARY source (its len bytes).
*/
#ifndef KESCOMN_CONV_BIN_H
#define KESCOMN_CONV_BIN_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Copies the first min(size, srcfmt->maxlength) source bytes to dest and
   sets *destlen to that count.  CS_TRUNCATED for a longer source, CS_EUNDERFLOW
   for a shorter one (the rest of dest untouched).  maxlength must be >= 1. */
KES_API CS_RETCODE comn_bintofixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_BYTE *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen, CS_INT size);
/* The same from src->len bytes of src->array, with CS_EOVERFLOW for a longer
   source. */
KES_API CS_RETCODE comn_varbintofixed(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VARBINARY *src,
                                      CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                                      CS_INT size);

/* Bytes as fixed-size scalars through the movers above, at the size of the
   destination's storage. */
KES_COMN_CONV(comn_bintoi1);
KES_COMN_CONV(comn_bintoi2);
KES_COMN_CONV(comn_bintoi4);
KES_COMN_CONV(comn_bintoi8);
KES_COMN_CONV(comn_bintoui2);
KES_COMN_CONV(comn_bintoui4);
KES_COMN_CONV(comn_bintoui8);
KES_COMN_CONV(comn_bintoflt4);
KES_COMN_CONV(comn_bintoflt8);
KES_COMN_CONV(comn_bintomny4);
KES_COMN_CONV(comn_bintomoney);
KES_COMN_CONV(comn_bintodate4);
KES_COMN_CONV(comn_bintodatetime);
KES_COMN_CONV(comn_bintobigdatetime);
KES_COMN_CONV(comn_bintobigtime);
KES_COMN_CONV(comn_varbintoi1);
KES_COMN_CONV(comn_varbintoi2);
KES_COMN_CONV(comn_varbintoi4);
KES_COMN_CONV(comn_varbintoi8);
KES_COMN_CONV(comn_varbintoui2);
KES_COMN_CONV(comn_varbintoui4);
KES_COMN_CONV(comn_varbintoui8);
KES_COMN_CONV(comn_varbintoflt4);
KES_COMN_CONV(comn_varbintoflt8);
KES_COMN_CONV(comn_varbintomny4);
KES_COMN_CONV(comn_varbintomoney);
KES_COMN_CONV(comn_varbintodate4);
KES_COMN_CONV(comn_varbintodatetime);
KES_COMN_CONV(comn_varbintobigdatetime);
KES_COMN_CONV(comn_varbintobigtime);
/* CS_DATE and CS_TIME bytes.  From CS_BINARY a value out of the type's range
   sets *destlen 0 and gives CS_EDOMAIN; a CS_VARBINARY source is not tested. */
KES_COMN_CONV(comn_bintodatea);
KES_COMN_CONV(comn_bintotimea);
KES_COMN_CONV(comn_varbintodatea);
KES_COMN_CONV(comn_varbintotimea);

/* A numeric: destfmt->precision (1 to 77, else CS_EPRECISION) and scale (at
   most 77, else CS_ESCALE) lead, then 33 source bytes as the digit array,
   sign byte first.  *destlen is 35; a shorter source gives CS_EUNDERFLOW. */
KES_COMN_CONV(comn_bintonum);
KES_COMN_CONV(comn_varbintonum);

/* 1 unless the first source byte is 0. */
KES_COMN_CONV(comn_bintobit);
KES_COMN_CONV(comn_varbintobit);

/* Two lower-case hexadecimal digits per byte, no "0x".  Whole pairs only; a
   cut result has no fill, otherwise the text fill of destfmt->format. */
KES_COMN_CONV(comn_bintochar);
KES_COMN_CONV(comn_varbintochar);
/* The same into a CS_VARCHAR (at most 256 digits, *destlen 258, no fill). */
KES_COMN_CONV(comn_bintovarchar);
KES_COMN_CONV(comn_varbintovarchar);

/* Bytes to a binary destination of destfmt->maxlength; the binary fill
   applies when nothing is cut. */
KES_COMN_CONV(comn_bintobin);
KES_COMN_CONV(comn_varbintobin);
/* Bytes to a CS_VARBINARY, at most 256 (*destlen 258).  A cut CS_BINARY
   source gives CS_TRUNCATED; a CS_VARBINARY source must hold 1 to 256 bytes. */
KES_COMN_CONV(comn_bintovarbin);
KES_COMN_CONV(comn_varbintovarbin);

/* Server layer: 1 if any source byte is not 0. */
KES_COMNB_CONV(comnb_bintobit);

/* Server layer: the bytes through comnb_anytofixed (dest->maxlen), then a
   validity or range test of the destination's bytes: failing it sets
   dest->len 0 and gives CS_EDOMAIN.  Otherwise the move's result, except for
   the two big types, which then answer CS_SUCCEED. */
KES_COMNB_CONV(comnb_bintodate);
KES_COMNB_CONV(comnb_bintodatea);
KES_COMNB_CONV(comnb_bintotimea);
KES_COMNB_CONV(comnb_bintobigdatetime);
KES_COMNB_CONV(comnb_bintobigtime);

/* Server layer: a sign byte of 0 or 1 (else CS_EDOMAIN) and a magnitude that,
   filled as the destination would be, fits dest->prec (else CS_EOVERFLOW);
   then copied like comnb_anytofixed without its float test. */
KES_COMNB_CONV(comnb_bintonum);

/* Server layer: the integer at src->value as upper-case hexadecimal digits
   filling dest->maxlen - 1 bytes ("0"s in front), then a NUL.  CS_ESYNTAX for
   a capacity below 2 or a null dest->value; CS_EOVERFLOW when the digits do
   not fit (the low ones are written).  dest->len is not touched. */
KES_COMNB_CONV(comnb_i4tohex);
KES_COMNB_CONV(comnb_i8tohex);
KES_COMNB_CONV(comnb_ui4tohex);
KES_COMNB_CONV(comnb_ui8tohex);

/* Server layer: hexadecimal text (at most 255 bytes, else CS_EOVERFLOW) in
   the set of context->char_attrib, optional "0x", to an integer (dest->len 4
   or 8).  Leading zeros are skipped; past 8 (16) significant digits the scan
   stops with CS_TRUNCATED and the first 8 (16) kept.  A bad digit is
   CS_ESYNTAX with value and dest->len 0. */
KES_COMNB_CONV(comnb_hextoi4);
KES_COMNB_CONV(comnb_hextoi8);
KES_COMNB_CONV(comnb_hextoui4);
KES_COMNB_CONV(comnb_hextoui8);

KES_END_DECLS

#endif /* KESCOMN_CONV_BIN_H */
