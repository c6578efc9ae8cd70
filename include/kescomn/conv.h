/*
** The conversion matrix and what every conversion shares: the per-context copy
** of the 40 by 40 table, user conversions for type codes of 40 and above,
** fixed type sizes, the void-source conversions and the binary fills.
*/
#ifndef KESCOMN_CONV_H
#define KESCOMN_CONV_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Gives the context its private copy of the matrix and an empty user list.
   CS_MEM_ERROR when the copy cannot be allocated.  A second call loses the
   first copy. */
KES_API CS_RETCODE com_conv_init(CS_CONTEXT *context);

/* Frees the copy and the user list. */
KES_API CS_RETCODE com_conv_free(CS_CONTEXT *context);

/* The conversion from srctype to desttype, or null when there is none.  Codes
   below 40 are one load from the context's table; others search the user list. */
KES_API CS_CONV_FUNC com_conv_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype);

/* Replaces one cell of this context's table (null empties it), or installs a
   user conversion when either code is 40 or more. */
KES_API CS_RETCODE com_conv_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                    CS_CONV_FUNC newfunc);

/* Restores the built-in cell, or empties a user conversion (keeping its node). */
KES_API CS_RETCODE com_conv_default(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype);

/* The fixed storage size of a type, or len for types without one. */
KES_API CS_INT comn_typelen(CS_INT type, CS_INT len);

/* A void source converts to the destination type's null value. */
KES_API CS_RETCODE comn_voidtoany(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                  CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);
/* Void to void: touches nothing. */
KES_API CS_RETCODE comn_voidtovoid(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen);

/* size bytes of a scalar's storage to a binary destination; CS_TRUNCATED when
   maxlength is below size. */
KES_API CS_RETCODE comn_fixedtobin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                   CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                                   CS_INT size);
/* size bytes of a scalar's storage to a CS_VARBINARY; *destlen is 258. */
KES_API CS_RETCODE comn_fixedtovarbin(CS_CONTEXT *context, CS_DATAFMT *srcfmt, CS_VOID *src,
                                      CS_DATAFMT *destfmt, CS_VOID *dest, CS_INT *destlen,
                                      CS_INT size);

KES_END_DECLS

#endif /* KESCOMN_CONV_H */
