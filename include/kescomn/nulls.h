/*
** Null values: what each of the forty types holds when a result has to be
** produced from nothing (the void row of the conversion matrix, a fetched
** null column).  A context keeps a private copy of the defaults, which a
** caller may replace per type, and a list of nulls for user types above 39.
*/
#ifndef KESCOMN_NULLS_H
#define KESCOMN_NULLS_H

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Gives the context its copy of the forty built-in nulls and an empty user
   list.  CS_MEM_ERROR (nothing kept) when an allocation fails. */
KES_API CS_RETCODE com_null_init(CS_CONTEXT *context);

/* Frees the copy and the user nodes; the values of user nulls stay
   allocated.  CS_SUCCEED. */
KES_API CS_RETCODE com_null_free(CS_CONTEXT *context);

/* Writes the null of datafmt->datatype to dest (capacity destlen) and its
   length to *outlen, finished by the type's fill under datafmt->format and
   maxlength.  A numeric null takes precision and scale from datafmt.  A user
   type's null comes with a NUL after it, one byte beyond its length; a user
   type without a null gives *outlen 0.  Fill results such as CS_EFORMAT pass
   through. */
KES_API CS_RETCODE com_null_get(CS_CONTEXT *context, CS_DATAFMT *datafmt, CS_VOID *dest,
                                CS_INT destlen, CS_INT *outlen);

/* Replaces the null of a type with a copy of len bytes (len 0 clears it; a
   cleared built-in null must be reinstalled before it is read).  CS_MEM_ERROR,
   with the old value already freed, when the copy cannot be allocated. */
KES_API CS_RETCODE com_null_set(CS_CONTEXT *context, CS_INT type, CS_VOID *value, CS_INT len);

/* Restores the built-in null of a type below 40, or removes a user type's
   null.  CS_MEM_ERROR when a buffer cannot be allocated. */
KES_API CS_RETCODE com_null_reinstall(CS_CONTEXT *context, CS_INT type);

/* ---- the byte-pointer layer ----------------------------------------------
** (dest, destlen, value, len): store value as the null of the type, or zeros
** when value is null or len 0, and return the type's size.
*/
KES_API CS_INT com_seti1null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_seti2null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_seti4null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setbitnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setmoneynull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setmny4null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setflt4null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setflt8null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setdatetimenull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setdatetime4null(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);

/* Text and byte nulls in the form of their name: char (blank fill to
   destlen), string (blank fill to destlen - 1, then a NUL), ntbstring (a NUL
   after the bytes), binary (zero fill to destlen), varychar and varybin (a
   16-bit length, then the bytes).  The length of the value; -5 when it does
   not fit, a text then cut to destlen - 2 bytes and ended by NULs.  A destlen
   of -1 is unbounded. */
KES_API CS_INT com_setcharnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setstringnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setntbstringnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setbinarynull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setvarycharnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);
KES_API CS_INT com_setvarybinnull(CS_BYTE *dest, CS_INT destlen, CS_BYTE *value, CS_INT len);

KES_END_DECLS

#endif /* KESCOMN_NULLS_H */
