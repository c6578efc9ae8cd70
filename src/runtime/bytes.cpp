// Byte and string tools: comparisons on unsigned bytes, which is how names
// compare everywhere in the library, a wipe the optimiser keeps, and the
// string setter of records that own their strings.
#include <dlfcn.h>

#include <cctype>
#include <cstring>

#include "errors/assert.h"
#include "kescomn/runtime.h"
#include "kesintl.h"

namespace {

unsigned char plain(CS_CHAR c) { return static_cast<unsigned char>(c); }
unsigned char folded(CS_CHAR c) { return static_cast<unsigned char>(std::tolower(plain(c))); }

// Up to the first NUL of both (stop_at_nul) or over exactly n bytes.
template <unsigned char (*Byte)(CS_CHAR)>
int compare(const CS_CHAR *s1, const CS_CHAR *s2, size_t n, bool stop_at_nul)
{
    KES_NOT_NULL(s1);
    KES_NOT_NULL(s2);
    for (size_t i = 0; i < n; i++) {
        int d = Byte(s1[i]) - Byte(s2[i]);
        if (d != 0)
            return d;
        if (stop_at_nul && s1[i] == '\0')
            return 0;
    }
    return 0;
}

constexpr size_t unbounded = static_cast<size_t>(-1);

} // namespace

int com_unsignstrcmp(const CS_CHAR *str1, const CS_CHAR *str2)
{
    return compare<plain>(str1, str2, unbounded, true);
}

int com_unsignstrncmp(const CS_CHAR *str1, const CS_CHAR *str2, size_t n)
{
    return compare<plain>(str1, str2, n, false);
}

int com_unsignstricmp(const CS_CHAR *str1, const CS_CHAR *str2)
{
    return compare<folded>(str1, str2, unbounded, true);
}

int com_unsignstrnicmp(const CS_CHAR *str1, const CS_CHAR *str2, size_t n)
{
    return compare<folded>(str1, str2, n, false);
}

int com_memhilo(const CS_VOID *p1, CS_INT len1, const CS_VOID *p2, CS_INT len2)
{
    CS_INT common = len1 < len2 ? len1 : len2;
    if (common > 0) {
        KES_NOT_NULL(p1);
        KES_NOT_NULL(p2);
        int d = std::memcmp(p1, p2, static_cast<size_t>(common));
        if (d != 0)
            return d < 0 ? -1 : 1;
    }
    return len1 < len2 ? -1 : len1 > len2 ? 1 : 0;
}

CS_VOID *com_secure_memset(CS_VOID *s, int c, size_t n)
{
    KES_NOT_NULL(s);
    // Volatile stores: a wipe of memory about to be freed is otherwise a
    // dead store the compiler may drop.
    volatile auto *p = static_cast<volatile unsigned char *>(s);
    for (size_t i = 0; i < n; i++)
        p[i] = static_cast<unsigned char>(c);
    return s;
}

CS_RETCODE com_setstring(CS_CHAR **destp, CS_INT *destlenp, const CS_CHAR *source, CS_INT sourcelen)
{
    if (destp == nullptr || destlenp == nullptr || source == nullptr)
        return KES_TRACE(CS_FAIL);
    if (sourcelen == CS_NULLTERM)
        sourcelen = static_cast<CS_INT>(std::strlen(source));
    if (sourcelen < 1)
        return KES_TRACE(CS_FAIL);
    auto *dest = static_cast<CS_CHAR *>(comn_realloc(*destp, static_cast<size_t>(sourcelen) + 1));
    if (dest == nullptr)
        return KES_TRACE(CS_MEM_ERROR);
    std::memcpy(dest, source, static_cast<size_t>(sourcelen));
    dest[sourcelen] = '\0';
    *destp = dest;
    *destlenp = sourcelen;
    return CS_SUCCEED;
}

CS_VOID *com_dlsym(const CS_CHAR *symbol)
{
    KES_NOT_NULL(symbol);
    return dlsym(RTLD_DEFAULT, symbol);
}
