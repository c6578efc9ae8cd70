/*
** The fills of the raw-buffer conversion layer: how a text result of len
** bytes is finished in the char, string and ntbstring forms.  Only the
** legacy members use them; the context layer has comn__padchar.
*/
#ifndef KESCOMN_CONV_LEGACY_FILL_H
#define KESCOMN_CONV_LEGACY_FILL_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Blanks from dest[len] up to dest[destlen - 1]; nothing when destlen is
   not above len (a destlen of -1, unbounded, included). */
void com__padchar(CS_BYTE *dest, CS_INT destlen, CS_INT len);

/* Blanks from dest[len] up to dest[destlen - 2], then a NUL in the last
   byte, which covers the last character when len reaches destlen.  A
   destlen of 0 or less is unbounded: the NUL goes right after the text. */
void com__padstring(CS_BYTE *dest, CS_INT destlen, CS_INT len);

/* Drops the trailing blanks of the len bytes at dest, keeping at least one
   character, and writes a NUL behind what is left (dest[len] at most).
   Returns the length kept. */
CS_INT com__padntbstring(CS_BYTE *dest, CS_INT len);

KES_END_DECLS

#endif
