// A double-byte set for the scanner fuzzers, written out without the
// library: lead bytes 0x81..0xFE; 0xA3 0xA0..0xFE are full-width twins of
// ASCII 0x20..0x7E; other pairs have no normal form.  With four_byte set,
// a lead followed by an ASCII digit starts a four-byte character.
#ifndef KESCOMN_FUZZ_CONV_SCAN_CHARSET_H
#define KESCOMN_FUZZ_CONV_SCAN_CHARSET_H

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "kescomn.h"

namespace kes::fuzz {

struct ScanCharset {
    CS_BYTE width[256];
    CS_NORM_MAP norm[2]{};
    CS_ATTRIB attr{};

    explicit ScanCharset(bool four_byte)
    {
        for (int b = 0; b < 256; b++) {
            width[b] = b >= 0x81 && b <= 0xFE ? 2 : 1;
            norm[0].norm[b] = b < 0x80 ? static_cast<CS_BYTE>(b) : 0;
        }
        if (four_byte)
            width[255] |= 0xF0;
        norm[0].norm[0xA3] = 1;
        for (int c = 0x20; c < 0x7F; c++)
            norm[1].norm[0x80 + c] = static_cast<CS_BYTE>(c);
        attr.cs_maxcharlen = four_byte ? 4 : 2;
        attr.cs_nnorm = 2;
        attr.cs_width_map = width;
        attr.cs_norm_map = norm;
    }
};

// A fuzzer input as text to scan: its first byte picks no character set (the
// built-in one), the double-byte or the four-byte set; the rest is copied to a
// buffer of exactly its size, so that a read past the text is caught.
struct ScanInput {
    CS_ATTRIB *attr;
    std::vector<char> text;

    ScanInput(const uint8_t *data, size_t size) : text(data + 1, data + size)
    {
        static ScanCharset two(false), four(true);
        CS_ATTRIB *const sets[] = {nullptr, &two.attr, &four.attr};
        attr = sets[data[0] % 3];
        text.reserve(1); // a real buffer even for no text
    }
    CS_INT len() const { return static_cast<CS_INT>(text.size()); }
};

inline void check(bool ok)
{
    if (!ok)
        std::abort();
}

} // namespace kes::fuzz

#endif
