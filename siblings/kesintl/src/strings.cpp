// Bounded string copies with the usual strlcpy/strlcat contract.
#include "kesintl.h"

#include <cstring>

extern "C" {

size_t intl_strlcpy(char *dest, const char *src, size_t size)
{
    size_t srclen = std::strlen(src);
    if (size > 0) {
        size_t n = srclen < size - 1 ? srclen : size - 1;
        std::memcpy(dest, src, n);
        dest[n] = '\0';
    }
    return srclen;
}

size_t intl_strlcat(char *dest, const char *src, size_t size)
{
    size_t destlen = strnlen(dest, size);
    if (destlen == size)
        return size + std::strlen(src);
    return destlen + intl_strlcpy(dest + destlen, src, size - destlen);
}

} // extern "C"
