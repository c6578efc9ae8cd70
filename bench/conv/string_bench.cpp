// Text to text beside a plain copy and the same fill: comn_chartochar of 32
// bytes and of 4 KiB of ASCII, ending with a NUL, and with blanks to a
// capacity 16 bytes larger.  Also a double-byte set with an exact capacity,
// where the cut walks the whole text, beside a plain copy.
#include <cstring>
#include <string>
#include <vector>

#include "../../tests/intl/test_charsets.h"
#include "intl/locale_records.h"
#include "kescomn.h"
#include "support/ratio.h"

namespace {

constexpr CS_INT kSlack = 16;

std::string ascii(size_t n)
{
    std::string s(n, ' ');
    for (size_t i = 0; i < n; ++i)
        s[i] = static_cast<char>('!' + i % 90);
    return s;
}

void chartochar_lib(benchmark::State &state, CS_INT format, bool dbcs, CS_INT slack)
{
    CS_CONTEXT ctx{};
    com_conv_init(&ctx);
    kes::test::DoubleByte set;
    CsCharDesc desc{};
    desc.char_attrib = set;
    CsLocCache cache{};
    cache.locchardesc = &desc;
    CS_LOCALE locale{};
    locale.ctypeptr = &cache;
    if (dbcs)
        ctx.ctxlocale = &locale;

    const std::string src = ascii(static_cast<size_t>(state.range(0)));
    CS_DATAFMT sf{};
    sf.datatype = CS_CHAR_TYPE;
    sf.maxlength = static_cast<CS_INT>(src.size());
    CS_DATAFMT df{};
    df.datatype = CS_CHAR_TYPE;
    df.maxlength = sf.maxlength + slack;
    df.format = format;
    std::vector<char> out(static_cast<size_t>(df.maxlength));
    CS_INT len;
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            comn_chartochar(&ctx, &sf, const_cast<char *>(src.data()), &df, out.data(), &len));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
    com_conv_free(&ctx);
}

// The copy and the fill, nothing else.
void chartochar_peer(benchmark::State &state, CS_INT format, CS_INT slack)
{
    const std::string src = ascii(static_cast<size_t>(state.range(0)));
    const size_t n = src.size(), cap = n + static_cast<size_t>(slack);
    std::vector<char> out(cap);
    for (auto _ : state) {
        const char *from = src.data();
        benchmark::DoNotOptimize(from);
        std::memcpy(out.data(), from, n);
        if (format & CS_FMT_PADBLANK)
            std::memset(out.data() + n, ' ', cap - n);
        else if (format & CS_FMT_NULLTERM)
            out[n] = 0;
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}

void nul_lib(benchmark::State &s) { chartochar_lib(s, CS_FMT_NULLTERM, false, kSlack); }
void nul_peer(benchmark::State &s) { chartochar_peer(s, CS_FMT_NULLTERM, kSlack); }
void blank_lib(benchmark::State &s) { chartochar_lib(s, CS_FMT_PADBLANK, false, kSlack); }
void blank_peer(benchmark::State &s) { chartochar_peer(s, CS_FMT_PADBLANK, kSlack); }
void dbcs_exact_lib(benchmark::State &s) { chartochar_lib(s, 0, true, 0); }
void copy_peer(benchmark::State &s) { chartochar_peer(s, 0, 0); }

} // namespace

BENCHMARK(nul_lib)->Name("chartochar_nul/lib")->Arg(32)->Arg(4096);
BENCHMARK(nul_peer)->Name("chartochar_nul/peer")->Arg(32)->Arg(4096);
BENCHMARK(blank_lib)->Name("chartochar_blank/lib")->Arg(32)->Arg(4096);
BENCHMARK(blank_peer)->Name("chartochar_blank/peer")->Arg(32)->Arg(4096);
BENCHMARK(dbcs_exact_lib)->Name("chartochar_dbcs_exact/lib")->Arg(32)->Arg(4096);
BENCHMARK(copy_peer)->Name("chartochar_dbcs_exact/peer")->Arg(32)->Arg(4096);

KES_BENCH_MAIN();
