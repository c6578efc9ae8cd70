// Money text in on random bytes.  Input: byte 0 picks the character set (none,
// double-byte, four-byte); the rest is the text.  Checks: a status of the
// parser's set; a value read back from its own four-decimal text is the same;
// the CS_MONEY4 reading agrees with the CS_MONEY one; every output style fits
// 40 bytes.
#include <cstdint>
#include <vector>

#include "../conv/scan_charset.h"
#include "numeric/mny.h"

using kes::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1)
        return 0;
    kes::fuzz::ScanInput in(data, size);
    CS_ATTRIB *attr = in.attr;
    std::vector<char> &text = in.text;
    const int len = in.len();

    CS_MONEY m{};
    const int status = com__mnyfromchar_mb(&m, text.data(), len, 0, attr);
    check(status == 0 || status == 1 || status == 2);

    CS_MONEY4 m4{};
    const int status4 = com__mny4fromchar_mb(&m4, text.data(), len, 0, attr);
    const int64_t v = kes::money::value(m);
    if (status != 0)
        check(status4 == status);
    else if (v < INT32_MIN || v > INT32_MAX)
        check(status4 == 1);
    else
        check(status4 == 0 && m4.mny4 == v);
    if (status != 0)
        return 0;

    for (int style : {0, 1, 1 << 8, 1 | 3 << 8, 4 << 8, 1 | 4 << 8}) {
        char out[40];
        const char *first = com__mnytochar(&m, out, sizeof out, style);
        check(first != nullptr);
        if ((style >> 8) == 4) {
            CS_MONEY back{};
            check(com__mnyfromchar_mb(&back, const_cast<char *>(first), static_cast<int>(out + sizeof out - first),
                                      0, nullptr) == 0);
            check(kes::money::value(back) == v);
        }
    }
    return 0;
}
