/* Private names of the null values. */
#ifndef KESCOMN_CONV_NULLS_H
#define KESCOMN_CONV_NULLS_H

#include "kescomn/nulls.h"

KES_BEGIN_DECLS

/* The built-in null of every type code, by code.  Rows 1 and 2 hold the text
   and binary entries the other way round (a null CS_BINARY is filled like
   text), and rows 18 and 19 swap the two 258-byte variable entries. */
extern const CsDefVal Comv_values[CS_MAX_TYPE];

/* The user null of type: the bytes, a NUL after them (beyond destlen when
   they fill it), *outlen their length + 1.  No node: *outlen 0. */
CS_RETCODE com__null_usr_get(CS_CONTEXT *context, CS_INT type, CS_VOID *dest, CS_INT destlen,
                             CS_INT *outlen);
/* Replaces the value of the type's node, or adds a node at the head. */
CS_RETCODE com__null_usr_set(CS_CONTEXT *context, CS_INT type, CS_VOID *value, CS_INT len);
/* Unlinks and frees the type's node and its value; CS_SUCCEED without one. */
CS_RETCODE com__null_usr_reinstall(CS_CONTEXT *context, CS_INT type);
/* Frees every node but not the values. */
CS_RETCODE com__null_usr_free(CS_CONTEXT *context);

KES_END_DECLS

#endif
