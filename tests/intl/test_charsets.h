// Character sets for tests, built as class 2 images in memory and turned
// into CS_ATTRIB records by com_build_char_attrib, as a caller that keeps
// its own images does.
//  - DoubleByte: lead bytes 81-9F and E0-FC.  Lead 82 carries full-width
//    digits (82 4F..58 -> 0-9) and letters (82 60..79 upper, 82 81..9A
//    lower, partners 0x21 apart) whose ASCII equivalents are A-Z and a-z;
//    lead 81 carries a full-width blank (81 40 -> ' '), point (81 44 -> '.')
//    and quote (81 66 -> '\'').  Single bytes A1-DF have no class, no case
//    partner and no equivalent.
//  - FourByte: lead bytes 81-FE; a lead followed by 30..39 starts a
//    four-byte character, otherwise two bytes.  No normalization map.
#ifndef KESCOMN_TESTS_INTL_TEST_CHARSETS_H
#define KESCOMN_TESTS_INTL_TEST_CHARSETS_H

#include <cstring>
#include <vector>

#include "intl/locale_records.h"
#include "kescomn.h"

namespace kes::test {

inline bool dbcs_lead(int b) { return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC); }

class Charset {
public:
    CS_ATTRIB *get() { return &attrib_; }
    operator CS_ATTRIB *() { return &attrib_; }

protected:
    // Header, then the width, normalization, type and soundex maps, with
    // big-endian offset/size words.  Type plane 0 starts as the built-in
    // set's ASCII half.
    std::vector<CS_BYTE> width = std::vector<CS_BYTE>(256, 0x11), norm, type, soundex = std::vector<CS_BYTE>(256);

    void planes(int n)
    {
        type.assign(static_cast<size_t>(n) * 1024, 0);
        std::memcpy(type.data(), com_get_typemap(), 128 * sizeof(CHAR_MAP));
    }
    CHAR_MAP &entry(int plane, int byte) { return reinterpret_cast<CHAR_MAP *>(type.data())[plane * 256 + byte]; }

    void build(CS_BYTE maxcharlen, CS_INT id, const char *name)
    {
        image_.assign(44, 0);
        image_[2] = 2;
        image_[3] = maxcharlen;
        image_[4] = 2;
        image_[5] = static_cast<CS_BYTE>(type.size() / 1024);
        image_[6] = static_cast<CS_BYTE>(norm.size() / 256);
        image_[7] = static_cast<CS_BYTE>(soundex.size() / 256);
        size_t slot = 12;
        for (const std::vector<CS_BYTE> *part : {&width, &norm, &type, &soundex}) {
            const CS_UINT words[2] = {part->empty() ? 0 : static_cast<CS_UINT>(image_.size()),
                                      static_cast<CS_UINT>(part->size())};
            for (CS_UINT w : words)
                for (int shift = 24; shift >= 0; shift -= 8)
                    image_[slot++] = static_cast<CS_BYTE>(w >> shift);
            image_.insert(image_.end(), part->begin(), part->end());
        }
        std::vector<char> n(name, name + std::strlen(name) + 1);
        com_build_char_attrib(CS_2CLASS_IMAGE, id, n.data(), image_.data(), &attrib_);
    }

private:
    std::vector<CS_BYTE> image_;
    CS_ATTRIB attrib_{};
};

class DoubleByte : public Charset {
public:
    DoubleByte()
    {
        // Plane 1: full-width letters (lead 82); plane 2: every other lead.
        planes(3);
        norm.assign(3 * 256, 0);
        for (int c = 0; c < 256; ++c) {
            const auto b = static_cast<CS_BYTE>(c);
            if (dbcs_lead(c)) {
                width[c] = 0x22;
                entry(0, c) = {static_cast<CS_BYTE>(c == 0x82 ? 1 : 2), 0, 1, 0x80};
            }
            entry(1, c) = {b, b, 1, 0x40};
            if (c >= 0x60 && c <= 0x79)
                entry(1, c) = {b, static_cast<CS_BYTE>(c + 0x21), 1, 0x41};
            if (c >= 0x81 && c <= 0x9A)
                entry(1, c) = {static_cast<CS_BYTE>(c - 0x21), b, 1, 0x42};
            entry(2, c) = {b, b, 32, 0x60};
            if (c < 0x80)
                norm[c] = b;
        }
        entry(2, 0x40) = {0x40, 0x40, 8, 0x08};
        norm[0x82] = 1;
        norm[0x81] = 2;
        for (int i = 0; i < 26; ++i) {
            norm[256 + 0x60 + i] = static_cast<CS_BYTE>('A' + i);
            norm[256 + 0x81 + i] = static_cast<CS_BYTE>('a' + i);
        }
        for (int i = 0; i < 10; ++i)
            norm[256 + 0x4F + i] = static_cast<CS_BYTE>('0' + i);
        norm[512 + 0x40] = ' ';
        norm[512 + 0x44] = '.';
        norm[512 + 0x66] = '\'';
        build(2, 140, "dbcs");
    }
};

class FourByte : public Charset {
public:
    FourByte()
    {
        planes(2);
        for (int c = 0x81; c <= 0xFE; ++c) {
            width[c] = 0x22;
            entry(0, c) = {1, 0, 1, 0x80};
        }
        width[255] = 0xF1; // marks the set as having four-byte characters
        for (int c = 0; c < 256; ++c)
            entry(1, c) = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c), 1, 0x40};
        build(4, 190, "fourbyte");
    }
};

// A locale whose loaded character set is attrib (none when null).
struct LoadedLocale {
    explicit LoadedLocale(CS_ATTRIB *attrib)
    {
        desc.char_attrib = attrib;
        cache.locchardesc = attrib != nullptr ? &desc : nullptr;
        locale.ctypeptr = &cache;
    }
    CsCharDesc desc{};
    CsLocCache cache{};
    CS_LOCALE locale{};
};

} // namespace kes::test

#endif
