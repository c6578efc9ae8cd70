/*
** The three tables of the exact numeric type, computed by the compiler.
**
** Com__Nume_Prec_To_Len[p]   bytes a value of precision p occupies, sign byte
**                            included (entry 0 is 2).
** Com__Nume_Len_To_Prec[l-2] the largest precision a value of l bytes holds
**                            (lengths 2..33; the three entries after are 255).
** Com__Nume_Byte_Power_Array[n]
**                            10^n as a value: byte 0 its length, byte 1 a zero
**                            sign byte, then the big-endian magnitude, zeros
**                            to the end of the row.
*/
#ifndef KESCOMN_NUMERIC_NUME_TABLES_H
#define KESCOMN_NUMERIC_NUME_TABLES_H

#include "kescomn/types.h"

namespace kes::numeric {

inline constexpr int kMaxPrec = 77;
inline constexpr int kMaxLen = 33; // sign byte + 32 magnitude bytes
inline constexpr int kPowerRow = 34;

struct NumeTables {
    CS_BYTE prec_to_len[kMaxPrec + 1];
    CS_BYTE len_to_prec[35];
    CS_BYTE power[kMaxPrec + 1][kPowerRow];
};

constexpr NumeTables make_nume_tables()
{
    NumeTables t{};
    // A running 10^n, big-endian in 32 bytes, multiplied by ten per row.
    CS_BYTE mag[kMaxLen - 1]{};
    mag[kMaxLen - 2] = 1;
    for (int n = 0; n <= kMaxPrec; ++n) {
        int first = 0;
        while (first < kMaxLen - 1 && mag[first] == 0)
            ++first;
        const int bytes = kMaxLen - 1 - first;
        // 10^n is never a power of 256, so it needs as many bytes as 10^n - 1
        // except at n = 0, where 10^0 - 1 needs none and the entry is 2.
        const auto len = static_cast<CS_BYTE>(1 + bytes);
        t.prec_to_len[n] = len;
        t.power[n][0] = len;
        t.power[n][1] = 0;
        for (int i = 0; i < bytes; ++i)
            t.power[n][2 + i] = mag[first + i];
        unsigned carry = 0;
        for (int i = kMaxLen - 2; i >= 0; --i) {
            const unsigned v = mag[i] * 10u + carry;
            mag[i] = static_cast<CS_BYTE>(v);
            carry = v >> 8;
        }
    }
    for (int len = 2; len <= 36; ++len) {
        CS_BYTE best = 255;
        if (len <= kMaxLen)
            for (int p = 1; p <= kMaxPrec; ++p)
                if (t.prec_to_len[p] == len)
                    best = static_cast<CS_BYTE>(p);
        t.len_to_prec[len - 2] = best;
    }
    return t;
}

inline constexpr NumeTables kNumeTables = make_nume_tables();

static_assert(kNumeTables.prec_to_len[1] == 2 && kNumeTables.prec_to_len[3] == 3 &&
              kNumeTables.prec_to_len[19] == 9 && kNumeTables.prec_to_len[38] == 17 &&
              kNumeTables.prec_to_len[77] == 33);
static_assert(kNumeTables.len_to_prec[0] == 2 && kNumeTables.len_to_prec[7] == 19 &&
              kNumeTables.len_to_prec[31] == 77 && kNumeTables.len_to_prec[32] == 255);

} // namespace kes::numeric

inline constexpr const CS_BYTE (&Com__Nume_Prec_To_Len)[78] = kes::numeric::kNumeTables.prec_to_len;
inline constexpr const CS_BYTE (&Com__Nume_Len_To_Prec)[35] = kes::numeric::kNumeTables.len_to_prec;
inline constexpr const CS_BYTE (&Com__Nume_Byte_Power_Array)[78][34] = kes::numeric::kNumeTables.power;

#endif
