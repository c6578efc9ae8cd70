/* Private tools of the text conversions. */
#ifndef KESCOMN_CONV_STRING_CONV_H
#define KESCOMN_CONV_STRING_CONV_H

#include "kescomn/conv_string.h"

KES_BEGIN_DECLS

/* Copies srcfmt->maxlength bytes of src to dest, doubling each character
   whose ASCII equivalent is `escape`; stops at a NUL when destfmt has bit 1.
   *destlen gets the bytes written.  CS_TRUNCATED when the next character (a
   doubled one counted twice) would pass destfmt->maxlength. */
CS_RETCODE comn__escchar(CS_CHAR *src, CS_DATAFMT *srcfmt, CS_CHAR *dest, CS_DATAFMT *destfmt,
                         CS_INT *destlen, CS_ATTRIB *ca, CS_INT escape);

/* sanitize 1 lowers, 2 raises the ASCII letters of sname in place, up to a
   NUL or namesize + 1 bytes; any other value leaves the name alone. */
void comn__sanitize_name(CS_INT sanitize, CS_CHAR *sname, CS_INT namesize);

KES_END_DECLS

#endif
