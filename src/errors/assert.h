/*
** The assertion pair every function starts with, and the trace of failure
** results.  Both take the file and line from where they are written.
*/
#ifndef KESCOMN_ERRORS_ASSERT_H
#define KESCOMN_ERRORS_ASSERT_H

#include "kescomn/debug.h"

/* A null pointer argument ends the process. */
#define KES_NOT_NULL(p)                                                   \
    do {                                                                  \
        if (__builtin_expect((p) == 0, 0))                                \
            com_raise_invalid_null_pointer(__FILE__, __LINE__);           \
    } while (0)

/* A broken invariant ends the process. */
#define KES_ASSERT(cond)                                                  \
    do {                                                                  \
        if (__builtin_expect(!(cond), 0))                                 \
            com_bomb(__FILE__, __LINE__);                                 \
    } while (0)

/* Return a failure code through the trace: return KES_TRACE(CS_FAIL); */
#define KES_TRACE(rc) com_errtrace((rc), __FILE__, __LINE__)

#endif /* KESCOMN_ERRORS_ASSERT_H */
