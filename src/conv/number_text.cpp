// The number-to-text rule shared by integers, floats and money.
#include <cstring>

#include "conv/conv_common.h"
#include "conv/fill.h"

namespace kes::conv {

CS_RETCODE comn_number_text_out(const char *text, CS_INT n, CS_DATAFMT *destfmt, CS_VOID *dest,
                                CS_INT *destlen)
{
    const CS_INT maxlength = destfmt->maxlength;
    *destlen = n < maxlength ? n : maxlength;
    if (text_has_room(maxlength, n, destfmt->format)) {
        std::memcpy(dest, text, static_cast<size_t>(n));
        return comn__padchar(n, destfmt, dest, destlen);
    }
    if (maxlength > 1) {
        std::memcpy(dest, "*", 2);
        *destlen = 1;
        (void)comn__padchar(1, destfmt, dest, destlen);
    }
    return KES_TRACE(CS_EOVERFLOW);
}

CS_RETCODE comnb_number_text_out(CAST_CONTEXT *context, const char *text, CS_INT n, __CONSTANT *dest)
{
    dest->len = n < dest->maxlen ? n : dest->maxlen;
    if (!text_has_room(dest->maxlen, n, context->format))
        return KES_TRACE(CS_EOVERFLOW);
    std::memcpy(dest->value, text, static_cast<size_t>(n));
    dest->len = n;
    return comnb__padchar(context, dest);
}

} // namespace kes::conv
