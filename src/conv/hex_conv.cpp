// The server layer's hexadecimal text of integers, both ways.
#include <cstring>

#include "conv/char_scan.h"
#include "conv/hex.h"
#include "conv/scalar_io.h"
#include "errors/assert.h"
#include "kescomn/conv_bin.h"

namespace {

using kes::conv::load;
using kes::conv::store;

// Upper-case digits right-aligned before a NUL in the whole capacity, the
// value taken as unsigned.
template <class U> CS_RETCODE int_to_hex(__CONSTANT *src, __CONSTANT *dest)
{
    if (dest->maxlen < 2 || dest->value == nullptr)
        return KES_TRACE(CS_ESYNTAX);
    U v = load<U>(src->value);
    CS_BYTE *out = dest->value;
    CS_INT pos = dest->maxlen - 1;
    out[pos] = '\0';
    do {
        out[--pos] = static_cast<CS_BYTE>(kes::conv::hex::kUpperDigits[v & 15]);
        v >>= 4;
    } while (v != 0 && pos > 0);
    if (v != 0)
        return KES_TRACE(CS_EOVERFLOW);
    std::memset(out, '0', static_cast<size_t>(pos));
    return CS_SUCCEED;
}

// The digit count is tested before the value, so the overflow test never
// fires once leading zeros are gone: a long text is cut, not refused.
template <class U, int MaxDigits> CS_RETCODE hex_to_int(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    constexpr CS_INT kMaxText = 255;
    if (src->len > kMaxText)
        return KES_TRACE(CS_EOVERFLOW);
    char buf[kMaxText + 1];
    com__conv2ascii(reinterpret_cast<CS_CHAR *>(src->value), src->len, buf, sizeof buf, context->char_attrib);
    const char *p = buf;
    if (p[0] == '0' && (p[1] == 'x' || p[1] == 'X'))
        p += 2;
    while (*p == '0')
        p++;
    constexpr U kLimit = (U{1} << (4 * MaxDigits - 4)) - 1;
    U v = 0;
    CS_RETCODE rc = CS_SUCCEED;
    for (int count = 0; *p != '\0'; p++, count++) {
        if (count > MaxDigits - 1) {
            rc = KES_TRACE(CS_TRUNCATED);
            break;
        }
        const int d = kes::conv::hex::digit_value(static_cast<unsigned char>(*p));
        if (d < 0) {
            store<U>(dest->value, 0);
            dest->len = 0;
            return KES_TRACE(CS_ESYNTAX);
        }
        if (v > kLimit) {
            rc = KES_TRACE(CS_EOVERFLOW);
            break;
        }
        v = static_cast<U>(v << 4 | static_cast<U>(d));
    }
    store<U>(dest->value, v);
    dest->len = sizeof(U);
    return rc;
}

} // namespace

extern "C" {

CS_RETCODE comnb_i4tohex(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return int_to_hex<CS_UINT>(src, dest);
}

CS_RETCODE comnb_i8tohex(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return int_to_hex<CS_UBIGINT>(src, dest);
}

CS_RETCODE comnb_ui4tohex(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_i4tohex(context, src, dest);
}

CS_RETCODE comnb_ui8tohex(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_i8tohex(context, src, dest);
}

CS_RETCODE comnb_hextoi4(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return hex_to_int<CS_UINT, 8>(context, src, dest);
}

CS_RETCODE comnb_hextoi8(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return hex_to_int<CS_UBIGINT, 16>(context, src, dest);
}

CS_RETCODE comnb_hextoui4(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_hextoi4(context, src, dest);
}

CS_RETCODE comnb_hextoui8(CAST_CONTEXT *context, __CONSTANT *src, __CONSTANT *dest)
{
    return comnb_hextoi8(context, src, dest);
}

} // extern "C"
