// Fills and byte movers of the raw-buffer conversion layer.
#include "conv/legacy_fill.h"

#include <algorithm>
#include <cstring>

#include "errors/assert.h"
#include "kescomn/conv_legacy.h"

namespace {

constexpr CS_INT kUnbounded = -1;

void blanks(CS_BYTE *dest, CS_INT from, CS_INT to)
{
    if (to > from)
        std::memset(dest + from, ' ', static_cast<size_t>(to - from));
}

} // namespace

extern "C" {

void com__padchar(CS_BYTE *dest, CS_INT destlen, CS_INT len)
{
    KES_NOT_NULL(dest);
    KES_ASSERT(len >= 0);
    blanks(dest, len, destlen);
}

void com__padstring(CS_BYTE *dest, CS_INT destlen, CS_INT len)
{
    KES_NOT_NULL(dest);
    KES_ASSERT(len >= 0);
    if (destlen <= 0) {
        dest[len] = 0;
        return;
    }
    blanks(dest, len, destlen - 1);
    dest[destlen - 1] = 0;
}

CS_INT com__padntbstring(CS_BYTE *dest, CS_INT len)
{
    KES_NOT_NULL(dest);
    KES_ASSERT(len >= 0);
    while (len > 1 && dest[len - 1] == ' ')
        --len;
    dest[len] = 0;
    return len;
}

CS_INT com_anytobinary(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    if (src == nullptr || srclen <= 0)
        return 0;
    KES_NOT_NULL(dest);
    const CS_INT n = destlen > 0 && destlen < srclen ? destlen : srclen;
    std::memcpy(dest, src, static_cast<size_t>(n));
    if (n < srclen)
        return -1;
    if (destlen > n)
        std::memset(dest + n, 0, static_cast<size_t>(destlen - n));
    return n;
}

CS_INT com_anytovarybin(CS_BYTE *src, CS_INT srclen, CS_BYTE *dest, CS_INT destlen)
{
    if (src == nullptr || srclen <= 0)
        return 0;
    KES_NOT_NULL(dest);
    const CS_INT room = destlen == kUnbounded ? CS_MAX_CHAR : std::clamp<CS_INT>(destlen, 0, CS_MAX_CHAR);
    const CS_INT n = std::min(srclen, room);
    const auto stored = static_cast<CS_SMALLINT>(n);
    std::memcpy(dest, &stored, sizeof stored);
    std::memcpy(dest + sizeof stored, src, static_cast<size_t>(n));
    return n < srclen ? -1 : n;
}

} // extern "C"
