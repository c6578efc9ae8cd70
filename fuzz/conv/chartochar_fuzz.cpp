// comn_chartochar with random formats, capacities and text, in the built-in
// single-byte set and in a double-byte set reached through the context's
// locale.  The destination sits in an exact-size allocation followed by
// guard bytes.  Checks: no write past the capacity, a result code of the
// text family, *destlen within the capacity, and a cut that ends on a
// character boundary, judged by an independent walk over the source (and,
// with quote doubling, over the doubled units).
//
// Input: byte 0 format bits, byte 1 capacity, byte 2 bit 0 the set; the rest
// is the text.
#include <cstdint>
#include <cstdlib>
#include <algorithm>
#include <cstring>
#include <vector>

#include "../../tests/intl/test_charsets.h"
#include "intl/locale_records.h"
#include "kescomn.h"

namespace {

constexpr size_t kGuard = 16;
constexpr uint8_t kGuardByte = 0xA5;

void check(bool ok)
{
    if (!ok)
        std::abort();
}

// Character lengths of the test sets, written out without the library.
size_t char_len(bool dbcs, const uint8_t *p)
{
    return dbcs && kes::test::dbcs_lead(*p) ? 2 : 1;
}

bool is_quote(bool dbcs, const uint8_t *p, size_t len)
{
    return (len == 1 && *p == '\'') || (dbcs && len == 2 && p[0] == 0x81 && p[1] == 0x66);
}

// Bytes a plain copy keeps: the source when it is shorter than the
// capacity, else the whole characters that fit.
size_t copy_len(bool dbcs, const uint8_t *src, size_t n, size_t cap)
{
    if (!dbcs || n < cap)
        return std::min(n, cap);
    size_t at = 0;
    while (at < cap) {
        const size_t len = char_len(dbcs, src + at);
        if (len > cap - at)
            break;
        at += len;
    }
    return at;
}

// One output unit: a character, or a doubled quote.
struct Unit {
    size_t src_at, src_len, out_len;
};

// The units of the source as the conversion should emit them.
std::vector<Unit> units(bool dbcs, const uint8_t *src, size_t n, bool escape, bool stop_at_nul)
{
    std::vector<Unit> out;
    for (size_t at = 0; at < n;) {
        if (escape && stop_at_nul && src[at] == 0)
            break;
        size_t len = char_len(dbcs, src + at);
        if (len > n - at)
            len = n - at;
        out.push_back({at, len, escape && is_quote(dbcs, src + at, len) ? 2 * len : len});
        at += len;
    }
    return out;
}

struct Fixture {
    kes::test::DoubleByte dbcs;
    CsCharDesc desc{};
    CsLocCache cache{};
    CS_LOCALE locale{};
    CS_CONTEXT context{};
    Fixture()
    {
        desc.char_attrib = dbcs;
        cache.locchardesc = &desc;
        locale.ctypeptr = &cache;
        com_conv_init(&context);
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Fixture fx;
    if (size < 3)
        return 0;
    const CS_INT format = data[0] & (CS_FMT_NULLTERM | CS_FMT_PADNULL | CS_FMT_PADBLANK | CS_FMT_JUSTIFY_RT |
                                     CS_FMT_SAFESTR);
    const CS_INT cap = data[1];
    const bool dbcs = data[2] & 1;
    std::vector<uint8_t> src(data + 3, data + size);
    src.reserve(src.size() + 1); // an empty text still has an address
    const CS_INT srclen = static_cast<CS_INT>(src.size());

    fx.context.ctxlocale = dbcs ? &fx.locale : nullptr;
    CS_DATAFMT sf{};
    sf.datatype = CS_CHAR_TYPE;
    sf.maxlength = srclen;
    CS_DATAFMT df{};
    df.datatype = CS_CHAR_TYPE;
    df.maxlength = cap;
    df.format = format;
    std::vector<uint8_t> dest(static_cast<size_t>(cap) + kGuard, kGuardByte);
    CS_INT destlen = -1;
    const CS_RETCODE rc = comn_chartochar(&fx.context, &sf, src.data(), &df, dest.data(), &destlen);

    for (size_t i = static_cast<size_t>(cap); i < dest.size(); ++i)
        check(dest[i] == kGuardByte);
    check(rc == CS_SUCCEED || rc == CS_TRUNCATED || rc == CS_EFORMAT);
    check(destlen >= 0 && destlen <= cap);

    // What the cut should keep: whole characters (or doubled quotes) only.
    const bool escape = format & CS_FMT_SAFESTR;
    const std::vector<Unit> us = units(dbcs, src.data(), src.size(), escape, format & CS_FMT_NULLTERM);
    std::vector<uint8_t> want;
    bool all_units = true;
    if (escape) {
        for (const Unit &u : us) {
            if (want.size() + u.out_len > static_cast<size_t>(cap)) {
                all_units = false;
                break;
            }
            for (size_t copies = u.out_len / u.src_len; copies > 0; --copies)
                want.insert(want.end(), src.begin() + u.src_at, src.begin() + u.src_at + u.src_len);
        }
    } else {
        want.assign(src.begin(), src.begin() + copy_len(dbcs, src.data(), src.size(), static_cast<size_t>(cap)));
        all_units = srclen <= cap;
    }
    // With a terminator and an exact fit the last stored byte is the NUL.
    // (The doubling cut returns before that step.)
    const bool exact_nul = (format & CS_FMT_NULLTERM) && want.size() == static_cast<size_t>(cap) &&
                           (all_units || !escape);
    const size_t compare = exact_nul && !want.empty() ? want.size() - 1 : want.size();
    check(compare == 0 || std::memcmp(dest.data(), want.data(), compare) == 0);
    if (exact_nul) {
        check(rc == CS_TRUNCATED && destlen == cap);
        if (cap > 0)
            check(dest[static_cast<size_t>(cap) - 1] == 0);
    } else if (!all_units) {
        check(rc != CS_SUCCEED);
    }
    if (escape && !all_units) // the doubling cut returns before any fill
        check(rc == CS_TRUNCATED && static_cast<size_t>(destlen) == want.size());
    return 0;
}
