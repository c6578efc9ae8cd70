/*
** Assertions, the result-code trace and the debug stream.  None of this
** reports to the application: output goes to the debug stream, and an
** assertion ends the process.
*/
#ifndef KESCOMN_DEBUG_H
#define KESCOMN_DEBUG_H

#include <stdio.h>

#include "kescomn/types.h"

KES_BEGIN_DECLS

/* Trace level (1 quiet, 2 failures, 3 everything); 1 at start. */
KES_API extern CS_INT Com_trace_enable;
/* The debug stream; standard output when null. */
KES_API extern FILE *Com_fp;

/* Sets the trace level; anything but 1, 2 or 3 is an assertion failure. */
KES_API void com_errset(CS_INT level);

/* Returns error, always.  At level 2 a failing code, at level 3 any code, is
   written to the debug stream as "(NAME) file F, line L". */
KES_API CS_RETCODE com_errtrace(CS_RETCODE error, const char *file, int line);

/* Prints the assertion line on standard error and ends the process. */
KES_API __attribute__((noreturn)) void com_bomb(const char *file, int line);
KES_API __attribute__((noreturn)) void com_raise_invalid_null_pointer(const char *file, int line);

/* With n == 1 an assertion closes standard error and calls abort(); otherwise
   it flushes standard error and raises SIGABRT. */
KES_API void com_toggle_abort(int n);

/* Flushes standard error and exits with -1; msg is not printed. */
KES_API __attribute__((noreturn)) void com_panic(const char *msg);

/* Bounded copy and append.  A result that does not fit in size bytes with its
   NUL, or a size below 1, is an assertion failure, not a truncation. */
KES_API void com_copstr(char *dest, const char *src, int size);
KES_API void com_catstr(char *dest, const char *src, int size);

/* With a name and a non-zero length, opens the file for writing and makes it
   the debug stream (CS_FAIL if it cannot be opened).  With no name, closes
   and clears the stream. */
KES_API CS_RETCODE comn_debug_setfile(CS_CONTEXT *context, const CS_CHAR *filename, CS_INT filenlen);

/* printf to the debug stream, then flush; returns 1. */
KES_API int comn_debug_print(const char *fmtstr, ...) __attribute__((format(printf, 1, 2)));

/* The library's small formatter: %c %d %x %X %s %ld %lx and %%, with flags
   and widths; ap is a va_list handed over as a pointer. */
KES_API CS_RETCODE comn_debug_vprint(const CS_CHAR *fmtstr, CS_VOID *ap);

/* Writes err_string to standard error and appends it to "kesinit.err" in the
   current directory.  "%%" in it prints one "%". */
KES_API void com_perr(const CS_CHAR *err_string);

/* No stack walking on this platform: always CS_FAIL. */
typedef CS_RETCODE (*CS_DBGSTACK_FUNC)(CS_VOID *, CS_CHAR *);
KES_API CS_RETCODE comn_dbg_stack(CS_VOID *tid, CS_VOID *fp, CS_INT depth, CS_DBGSTACK_FUNC callback);

/* Library version as "major.minor.patch"; *debug says whether this is a debug
   build when debug is not null. */
KES_API const CS_CHAR *com_version(CS_BOOL *debug);
/* The suffix of the driver version, such as "EBF0". */
KES_API const CS_CHAR *com_get_driverversionsuffix(void);
/* The one-line slash-separated version banner. */
KES_API const CS_CHAR *com_version_banner(void);

KES_END_DECLS

#endif /* KESCOMN_DEBUG_H */
