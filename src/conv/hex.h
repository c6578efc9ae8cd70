/*
** Hexadecimal digits both ways, shared by the byte-to-text, text-to-byte and
** server hex conversions so that there is one table of each.
*/
#ifndef KESCOMN_CONV_HEX_H
#define KESCOMN_CONV_HEX_H

#include <array>
#include <cstddef>
#include <cstdint>

#include "kescomn/types.h"

namespace kes::conv::hex {

inline constexpr char kLowerDigits[] = "0123456789abcdef";
inline constexpr char kUpperDigits[] = "0123456789ABCDEF";

inline constexpr std::array<int8_t, 256> kDigitValue = [] {
    std::array<int8_t, 256> t{};
    for (auto &v : t)
        v = -1;
    for (int c = 0; c < 10; c++)
        t['0' + c] = static_cast<int8_t>(c);
    for (int c = 0; c < 6; c++) {
        t['a' + c] = static_cast<int8_t>(10 + c);
        t['A' + c] = static_cast<int8_t>(10 + c);
    }
    return t;
}();

// The value of a hexadecimal digit of either case, or -1.
constexpr int digit_value(unsigned char c) { return kDigitValue[c]; }

// Two lower-case digits per byte value, high half first: one load per byte.
inline constexpr std::array<std::array<char, 2>, 256> kLowerPairs = [] {
    std::array<std::array<char, 2>, 256> t{};
    for (int b = 0; b < 256; b++)
        t[b] = {kLowerDigits[b >> 4], kLowerDigits[b & 15]};
    return t;
}();

// Writes 2 * nbytes lower-case digits for the bytes at src.
inline void write_lower(const CS_BYTE *src, size_t nbytes, char *dest)
{
    for (size_t i = 0; i < nbytes; i++) {
        dest[2 * i] = kLowerPairs[src[i]][0];
        dest[2 * i + 1] = kLowerPairs[src[i]][1];
    }
}

} // namespace kes::conv::hex

#endif
