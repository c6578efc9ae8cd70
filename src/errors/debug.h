/* Private names of the debug and trace module. */
#ifndef KESCOMN_ERRORS_DEBUG_H
#define KESCOMN_ERRORS_DEBUG_H

#include "kescomn/debug.h"

KES_BEGIN_DECLS

/* One row of the names the trace prints. */
typedef struct com_err_string {
    CS_RETCODE errcode;
    const CS_CHAR *errstr;
} ComErrString;

#define COM_ERRORS_COUNT 17
extern const ComErrString Com_errors[COM_ERRORS_COUNT];

/* The name of a code from Com_errors, or null. */
const CS_CHAR *com__errfind(CS_RETCODE error);
/* Always 0: this build does not track the stack. */
void com__get_stack_depth(int *depth);
/* Ends the process the way com_toggle_abort chose. */
__attribute__((noreturn)) void com__abort(void);
/* True for the conversion characters of comn_debug_vprint. */
int fmt_spec(int charac);

KES_END_DECLS

#endif
