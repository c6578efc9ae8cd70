/*
** The fill routines every text or byte result ends in: the one place that
** decides what format means, what the length field says afterwards, and when
** a destination is too small.
*/
#ifndef KESCOMN_CONV_FILL_H
#define KESCOMN_CONV_FILL_H

#include "kescomn/conv.h"

KES_BEGIN_DECLS

/* Finishes text of srclen bytes of which *destlen stand in dest: terminator,
   NUL fill or blank fill by destfmt->format.  CS_EOVERFLOW when there is no
   room (a terminator then overwrites the last byte), CS_EFORMAT for bits 2
   and 4 together. */
CS_RETCODE comn__padchar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* Binary fill: only bit 2 counts; always CS_SUCCEED. */
CS_RETCODE comn__padbin(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* comn__padchar in 16-bit code units; lengths in bytes. */
CS_RETCODE comn__padunichar(CS_INT srclen, CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* The server layer's text fill; dest->len is the value's length.  Honours
   right justification (bit 8) with blank fill. */
CS_RETCODE comnb__padchar(CAST_CONTEXT *context, __CONSTANT *dest);

/* The server layer's byte fill: NULs with bit 2, else blanks with bit 4. */
CS_RETCODE comnb__padbin(CAST_CONTEXT *context, __CONSTANT *dest);

KES_END_DECLS

#endif
