/*
** Byte movers of the raw-buffer conversion layer (src, srclen, dest,
** destlen): a null src or a srclen of 0 or less stores nothing and returns
** 0; otherwise the count of bytes stored, or -1 when the source was cut.
*/
#ifndef KESCOMN_CONV_LEGACY_H
#define KESCOMN_CONV_LEGACY_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Fixed binary: copies srclen bytes, or destlen when that is above 0 and
   smaller (then -1, no fill); a whole copy is zero-filled up to destlen. */
KES_API CS_INT com_anytobinary(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen);

/* Varybin: a 16-bit length, then the smaller of srclen and destlen bytes
   (destlen counts the bytes behind the length; -1 is unbounded), never more
   than the record's CS_MAX_CHAR.  The length is stored even when cut (-1). */
KES_API CS_INT com_anytovarybin(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen);

KES_END_DECLS

#endif /* KESCOMN_CONV_LEGACY_H */
