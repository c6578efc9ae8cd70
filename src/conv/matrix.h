/* Private names of the conversion matrix. */
#ifndef KESCOMN_CONV_MATRIX_H
#define KESCOMN_CONV_MATRIX_H

#include <array>

#include "kescomn/conv.h"

// Side of the built-in matrix: one row and one column per type code.
inline constexpr int kConvDim = CS_MAX_TYPE;

// The constant matrix, row = source code, column = destination code.
extern const std::array<CS_CONV_FUNC, kConvDim * kConvDim> Com__cnvrt_array;

extern "C" {

/* The address of Com__cnvrt_array and its side. */
void com__get_ctbl(CS_CONV_FUNC **cvt_array, int *cvt_dim);

/* The user conversion node of a pair, or null. */
CsUsrCvtFunc *com__conv_usr_struct(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype);
/* The function of a user pair, or null. */
CS_CONV_FUNC com__conv_usr_func(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype);
/* Installs or replaces a user pair; CS_MEM_ERROR when a node cannot be allocated. */
CS_RETCODE com__conv_usr_install(CS_CONTEXT *context, CS_INT srctype, CS_INT desttype,
                                 CS_CONV_FUNC newfunc);
/* Frees every user node. */
CS_RETCODE com__conv_usr_free(CS_CONTEXT *context);

}

#endif
