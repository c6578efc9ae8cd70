// Decimal text into numerics on random input.  Bytes 0 and 1 pick the
// precision (0 or above 77: derived) and the scale (above 77: the text's);
// byte 2 bit 0 the tolerant flag; the rest is the text.  Checks: a status of
// the reader's set, never 6 when tolerant; a derived result stays inside the
// 33-byte area, right-aligned; a fixed-shape result fits its precision and,
// written out and read back strictly, gives the same bytes.
#include <cstdint>
#include <cstring>
#include <vector>

#include "../conv/scan_charset.h"
#include "numeric/exctnume.h"
#include "numeric/numconv.h"

using kes::fuzz::check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    CS_BYTE prec = data[0] % 80;
    CS_BYTE scale = data[1] % 80 == 79 ? 255 : data[1] % 80;
    const int flag = data[2] & 1;
    // An exact-size, NUL-terminated copy: the exponent scan runs to the NUL.
    std::vector<char> text(data + 3, data + size);
    text.push_back('\0');
    const int len = static_cast<int>(size - 3);

    const bool fixed = prec >= 1 && prec <= 77;
    CS_BYTE area[33];
    CS_INT destlen = fixed ? Com__Nume_Prec_To_Len[prec] : 33;
    const CS_INT len0 = destlen;
    CS_BYTE *dest = area;
    const CS_BYTE scale0 = scale;
    const int st = com__subchartoexctnume(text.data(), len, &dest, &destlen, &prec, &scale, flag);
    check(st == 0 || st == 1 || st == 2 || st == 6);
    check(!(flag == 1 && st == 6));
    if (st != 0)
        return 0;
    check(dest >= area && dest + destlen == area + len0 && destlen >= 2);
    if (!fixed || scale0 > 77)
        return 0;
    check(scale == scale0);

    __CONSTANT c{};
    c.len = destlen;
    c.prec = prec;
    c.scale = scale;
    c.value = dest;
    check(com__exctnume_checkprecision(&c) == 0);
    char out[kes::numeric::kNumTextBuf + 1];
    const int at = com__subexctnumetochar(&c, out, kes::numeric::kNumTextBuf);
    if (at < 0) {
        check(dest[0] != 0 && scale == 77);
        return 0;
    }
    out[kes::numeric::kNumTextBuf] = '\0';
    CS_BYTE again[33];
    CS_BYTE *d2 = again;
    CS_INT l2 = destlen;
    CS_BYTE p2 = prec, s2 = scale;
    check(com__subchartoexctnume(out + at, kes::numeric::kNumTextBuf - at, &d2, &l2, &p2, &s2, 0) == 0);
    // A negative zero reads back as a positive one.
    const bool zero = std::memcmp(dest + 1, again + 1, static_cast<size_t>(destlen - 1)) == 0 &&
                      [&] {
                          for (int i = 1; i < destlen; ++i)
                              if (dest[i] != 0)
                                  return false;
                          return true;
                      }();
    check(std::memcmp(dest + 1, again + 1, static_cast<size_t>(destlen - 1)) == 0);
    check(zero ? again[0] == 0 : dest[0] == again[0]);
    return 0;
}
