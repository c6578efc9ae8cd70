// Assertions, the result-code trace and the debug stream.
#include "errors/debug.h"

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "errors/assert.h"
#include "kesintl.h"

extern "C" {

CS_INT Com_trace_enable = 1;
FILE *Com_fp = nullptr;
static int full_abort = 0;

const ComErrString Com_errors[COM_ERRORS_COUNT] = {
    {CS_SUCCEED, "CS_SUCCEED"},         {CS_FAIL, "CS_FAIL"},
    {CS_MEM_ERROR, "CS_MEM_ERROR"},     {CS_PENDING, "CS_PENDING"},
    {CS_QUIET, "CS_QUIET"},             {CS_BUSY, "CS_BUSY"},
    {CS_INTERRUPT, "CS_INTERRUPT"},     {CS_CANCELED, "CS_CANCELED"},
    {CS_ROW_FAIL, "CS_ROW_FAIL"},       {CS_END_DATA, "CS_END_DATA"},
    {CS_END_RESULTS, "CS_END_RESULTS"}, {CS_END_ITEM, "CS_END_ITEM"},
    {CS_NOMSG, "CS_NOMSG"},             {CS_TIMED_OUT, "CS_TIMED_OUT"},
    {CS_PASSTHRU_EOM, "CS_PASSTHRU_EOM"}, {CS_PASSTHRU_MORE, "CS_PASSTHRU_MORE"},
    {CS_TRYING, "CS_TRYING"},
};

static FILE *debug_stream() { return Com_fp != nullptr ? Com_fp : stdout; }

void com_errset(CS_INT level)
{
    KES_ASSERT(level >= 1 && level <= 3);
    Com_trace_enable = level;
}

const CS_CHAR *com__errfind(CS_RETCODE error)
{
    for (const ComErrString &row : Com_errors)
        if (row.errcode == error)
            return row.errstr;
    return nullptr;
}

void com__get_stack_depth(int *depth) { *depth = 0; }

CS_RETCODE com_errtrace(CS_RETCODE error, const char *file, int line)
{
    if (Com_trace_enable <= 1)
        return error;
    if (Com_trace_enable == 2) {
        switch (error) {
        case CS_SUCCEED: case CS_PENDING: case CS_INTERRUPT:
        case CS_END_DATA: case CS_END_RESULTS: case CS_END_ITEM:
            return error;
        default:
            break;
        }
    }
    const char *base = file != nullptr ? std::strrchr(file, '/') : nullptr;
    base = base != nullptr ? base + 1 : (file != nullptr ? file : "");
    FILE *out = debug_stream();
    int depth;
    com__get_stack_depth(&depth);
    for (int i = 0; i < depth; i++)
        std::fputc('.', out);
    if (const CS_CHAR *name = com__errfind(error))
        std::fprintf(out, "(%s) file %s, line %d\n", name, base, line);
    else
        std::fprintf(out, "(%ld) file %s, line %d\n", static_cast<long>(error), base, line);
    return error;
}

void com__abort(void)
{
    if (full_abort == 1) {
        std::fclose(stderr);
        std::abort();
    }
    std::fflush(stderr);
    std::raise(SIGABRT);
    std::abort(); // a caught SIGABRT must still end the process
}

void com_toggle_abort(int n) { full_abort = n; }

void com_bomb(const char *file, int line)
{
    std::fprintf(stderr, "\n\rassertion failed, file '%s' line %d\n\r", file, line);
    com__abort();
}

void com_raise_invalid_null_pointer(const char *file, int line)
{
    std::fprintf(stderr, "\nInvalid NULL pointer , file '%s' line %d\n", file, line);
    com__abort();
}

void com_panic(const char *msg)
{
    (void)msg;
    std::fflush(stderr);
    std::exit(-1);
}

void com_copstr(char *dest, const char *src, int size)
{
    KES_ASSERT(size >= 1);
    KES_ASSERT(intl_strlcpy(dest, src, static_cast<size_t>(size)) < static_cast<size_t>(size));
}

void com_catstr(char *dest, const char *src, int size)
{
    KES_ASSERT(size >= 1);
    KES_ASSERT(intl_strlcat(dest, src, static_cast<size_t>(size)) < static_cast<size_t>(size));
}

CS_RETCODE comn_debug_setfile(CS_CONTEXT *context, const CS_CHAR *filename, CS_INT filenlen)
{
    (void)context;
    if (filename != nullptr && filenlen != 0) {
        FILE *fp = std::fopen(filename, "w");
        if (fp == nullptr)
            return KES_TRACE(CS_FAIL);
        Com_fp = fp; // an earlier stream stays open: callers may still hold it
        return CS_SUCCEED;
    }
    if (Com_fp != nullptr)
        std::fclose(Com_fp);
    Com_fp = nullptr;
    return CS_SUCCEED;
}

int comn_debug_print(const char *fmtstr, ...)
{
    FILE *out = debug_stream();
    va_list ap;
    va_start(ap, fmtstr);
    std::vfprintf(out, fmtstr, ap);
    va_end(ap);
    std::fflush(out);
    return 1;
}

int fmt_spec(int charac)
{
    return charac == 'c' || charac == 'd' || charac == 'l' || charac == 's' || charac == 'x' ||
           charac == 'X';
}

// Flags and widths that may stand between "%" and the conversion character.
static bool fmt_modifier(int c)
{
    return c == '-' || c == '+' || c == ' ' || c == '#' || c == '.' || (c >= '0' && c <= '9');
}

CS_RETCODE comn_debug_vprint(const CS_CHAR *fmtstr, CS_VOID *ap_ptr)
{
    FILE *out = debug_stream();
    va_list ap;
    va_copy(ap, *static_cast<va_list *>(ap_ptr));
    const char *p = fmtstr;
    while (*p != '\0') {
        if (*p != '%') {
            std::fputc(*p++, out);
            continue;
        }
        if (p[1] == '%') {
            std::fputc('%', out);
            p += 2;
            continue;
        }
        char piece[32];
        size_t n = 0;
        piece[n++] = *p++;
        while (*p != '\0' && fmt_modifier(*p) && n < sizeof piece - 4)
            piece[n++] = *p++;
        if (*p == '\0' || !fmt_spec(*p)) {
            std::fputs("illegal format specification\n", out);
            if (*p != '\0')
                p++;
            continue;
        }
        char conversion = *p++;
        piece[n++] = conversion;
        if (conversion == 'l') {
            if (*p == 'd' || *p == 'x' || *p == 'X')
                piece[n++] = *p++;
            else
                piece[n++] = 'd';
        }
        piece[n] = '\0';
        switch (conversion) {
        case 'd': case 'x': case 'X':
            std::fprintf(out, piece, va_arg(ap, int));
            break;
        case 'c':
            std::fprintf(out, piece, va_arg(ap, int));
            break;
        case 'l':
            std::fprintf(out, piece, va_arg(ap, long));
            break;
        case 's': {
            const char *s = va_arg(ap, const char *);
            std::fprintf(out, piece, s != nullptr ? s : "(null)");
            break;
        }
        }
    }
    va_end(ap);
    std::fflush(out);
    return CS_SUCCEED;
}

// Writes text with "%%" read as "%": the message is a format without arguments.
static void put_format_text(FILE *fp, const CS_CHAR *text)
{
    for (const char *p = text; *p != '\0'; p++) {
        if (p[0] == '%' && p[1] == '%')
            p++;
        std::fputc(*p, fp);
    }
}

void com_perr(const CS_CHAR *err_string)
{
    put_format_text(stderr, err_string);
    std::fflush(stderr);
    if (FILE *fp = std::fopen("kesinit.err", "a")) {
        put_format_text(fp, err_string);
        std::fclose(fp);
    }
}

CS_RETCODE comn_dbg_stack(CS_VOID *tid, CS_VOID *fp, CS_INT depth, CS_DBGSTACK_FUNC callback)
{
    return CS_FAIL;
}

} // extern "C"
