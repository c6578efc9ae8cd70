/* The public headers compile as C, and a C caller can set up a context and
   convert through the matrix. */
#include <stdio.h>
#include <string.h>

#include "kescomn.h"
#include "kesintl.h"

int main(void)
{
    CS_CONTEXT context;
    memset(&context, 0, sizeof context);
    if (com_conv_init(&context) != CS_SUCCEED)
        return 1;
    CS_CONV_FUNC convert = com_conv_func(&context, CS_INT_TYPE, CS_SMALLINT_TYPE);
    CS_DATAFMT srcfmt, destfmt;
    memset(&srcfmt, 0, sizeof srcfmt);
    memset(&destfmt, 0, sizeof destfmt);
    srcfmt.datatype = CS_INT_TYPE;
    destfmt.datatype = CS_SMALLINT_TYPE;
    CS_INT value = 70000;
    CS_SMALLINT out = 0;
    CS_INT outlen = 0;
    CS_RETCODE rc = convert(&context, &srcfmt, &value, &destfmt, &out, &outlen);
    com_conv_free(&context);
    if (rc != CS_EOVERFLOW || out != 32767 || outlen != 2)
        return 1;
    printf("1 passed, 0 failed\n");
    return 0;
}
