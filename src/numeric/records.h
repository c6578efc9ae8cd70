/*
** The record operations behind comn_numadd, comn_numsub, comn_num_addorsub,
** comn_nummul and comn_numdivide: argument checks, the result's precision
** and scale, the word path and the byte kernel.  With try_words false they
** run on the byte kernel alone, which the tests hold the word path to.
*/
#ifndef KESCOMN_NUMERIC_RECORDS_H
#define KESCOMN_NUMERIC_RECORDS_H

#include "kescomn/types.h"

namespace kes::numeric {

CS_RETCODE record_addorsub(CS_NUMERIC *oper1, CS_NUMERIC *oper2, CS_NUMERIC *result, CS_INT operation,
                           bool try_words);
CS_RETCODE record_mul(CS_NUMERIC *m1, CS_NUMERIC *m2, CS_NUMERIC *result, bool try_words);
CS_RETCODE record_divide(CS_NUMERIC *dividend, CS_NUMERIC *divisor, CS_NUMERIC *quot, bool try_words);

} // namespace kes::numeric

#endif
