// Character sets for tests, built as class 1 and class 2 images in memory
// and turned into CS_ATTRIB records by com_build_char_attrib, the way a
// caller that keeps its own images does.
//
//  - Latin1Image: a class 1 image holding the built-in ISO 8859-1 maps.
//  - DoubleByte: lead bytes 81-9F and E0-FC; lead 82 carries full-width
//    letters (82 60..79 upper, 82 81..9A lower, partners 0x21 apart) with
//    ASCII equivalents; lead 81 carries a full-width blank (81 40) and a
//    full-width quote (81 66) whose equivalents are ' ' and '\''.  Single
//    bytes A1-DF are one-byte characters without an ASCII equivalent.
//  - FourByte: lead bytes 81-FE; a lead followed by 30..39 starts a
//    four-byte character, otherwise two bytes.  No normalization map.
#ifndef KESCOMN_TESTS_INTL_TEST_CHARSETS_H
#define KESCOMN_TESTS_INTL_TEST_CHARSETS_H

#include <cstring>
#include <vector>

#include "kescomn.h"

namespace kes::test {

class Charset {
public:
    CS_ATTRIB *get() { return &attrib_; }
    operator CS_ATTRIB *() { return &attrib_; }

protected:
    std::vector<CS_BYTE> image_;
    CS_ATTRIB attrib_{};
};

class Latin1Image : public Charset {
public:
    Latin1Image()
    {
        image_.assign(1285, 0);
        std::memcpy(image_.data(), com_get_typemap(), sizeof(CS_TYPE_MAP));
        std::memcpy(image_.data() + 1028, com_get_charattrib()->cs_soundex, sizeof(CS_SOUNDEX));
        char name[] = "iso_1";
        com_build_char_attrib(CS_1CLASS_IMAGE, 1, name, image_.data(), &attrib_);
    }
};

// A class 2 image: header, then width, normalization, type and soundex maps.
class Class2Builder {
public:
    std::vector<CS_BYTE> width, norm, type, soundex;
    CS_BYTE maxcharlen = 2, ncharsize = 2;

    std::vector<CS_BYTE> image() const
    {
        std::vector<CS_BYTE> img(44, 0);
        img[2] = 2;
        img[3] = maxcharlen;
        img[4] = ncharsize;
        img[5] = static_cast<CS_BYTE>(type.size() / 1024);
        img[6] = static_cast<CS_BYTE>(norm.size() / 256);
        img[7] = static_cast<CS_BYTE>(soundex.size() / 256);
        size_t slot = 12;
        for (const std::vector<CS_BYTE> *part : {&width, &norm, &type, &soundex}) {
            put_be(img, slot, part->empty() ? 0 : static_cast<CS_UINT>(img.size()));
            put_be(img, slot + 4, static_cast<CS_UINT>(part->size()));
            img.insert(img.end(), part->begin(), part->end());
            slot += 8;
        }
        return img;
    }

    // Plane 0 entries copied from the built-in set for the ASCII half.
    static std::vector<CS_BYTE> type_planes(int planes)
    {
        std::vector<CS_BYTE> t(static_cast<size_t>(planes) * 1024, 0);
        std::memcpy(t.data(), com_get_typemap(), 128 * sizeof(CHAR_MAP));
        return t;
    }

    static CHAR_MAP &entry(std::vector<CS_BYTE> &type, int plane, int byte)
    {
        return *reinterpret_cast<CHAR_MAP *>(type.data() + plane * 1024 + byte * 4);
    }

private:
    static void put_be(std::vector<CS_BYTE> &img, size_t at, CS_UINT v)
    {
        img[at] = static_cast<CS_BYTE>(v >> 24);
        img[at + 1] = static_cast<CS_BYTE>(v >> 16);
        img[at + 2] = static_cast<CS_BYTE>(v >> 8);
        img[at + 3] = static_cast<CS_BYTE>(v);
    }
};

inline bool dbcs_lead(int b) { return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC); }

class DoubleByte : public Charset {
public:
    DoubleByte()
    {
        Class2Builder b;
        b.width.assign(256, 0x11);
        for (int c = 0; c < 256; ++c)
            if (dbcs_lead(c))
                b.width[c] = 0x22;
        // Plane 1: full-width letters (lead 82); plane 2: everything else.
        b.type = Class2Builder::type_planes(3);
        for (int c = 0; c < 256; ++c) {
            if (dbcs_lead(c))
                Class2Builder::entry(b.type, 0, c) = {static_cast<CS_BYTE>(c == 0x82 ? 1 : 2), 0, 1, 0x80};
            CHAR_MAP &letter = Class2Builder::entry(b.type, 1, c);
            letter = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c), 1, 0x40};
            if (c >= 0x60 && c <= 0x79)
                letter = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c + 0x21), 1, 0x41};
            if (c >= 0x81 && c <= 0x9A)
                letter = {static_cast<CS_BYTE>(c - 0x21), static_cast<CS_BYTE>(c), 1, 0x42};
            Class2Builder::entry(b.type, 2, c) = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c), 32, 0x60};
        }
        Class2Builder::entry(b.type, 2, 0x40) = {0x40, 0x40, 8, 0x08}; // full-width blank
        // Normalization: plane 0 by first byte; lead 82 -> plane 1, 81 -> 2.
        b.norm.assign(3 * 256, 0);
        for (int c = 0; c < 0x80; ++c)
            b.norm[c] = static_cast<CS_BYTE>(c);
        b.norm[0x82] = 1;
        b.norm[0x81] = 2;
        for (int i = 0; i < 26; ++i) {
            b.norm[256 + 0x60 + i] = static_cast<CS_BYTE>('A' + i);
            b.norm[256 + 0x81 + i] = static_cast<CS_BYTE>('a' + i);
        }
        b.norm[512 + 0x40] = ' ';
        b.norm[512 + 0x66] = '\'';
        b.soundex.assign(256, 0);
        image_ = b.image();
        char name[] = "dbcs";
        com_build_char_attrib(CS_2CLASS_IMAGE, 140, name, image_.data(), &attrib_);
    }
};

class FourByte : public Charset {
public:
    FourByte()
    {
        Class2Builder b;
        b.maxcharlen = 4;
        b.width.assign(256, 0x11);
        for (int c = 0x81; c <= 0xFE; ++c)
            b.width[c] = 0x22;
        b.width[255] = 0xF1; // marks the set as having four-byte characters
        b.type = Class2Builder::type_planes(2);
        for (int c = 0x81; c <= 0xFE; ++c)
            Class2Builder::entry(b.type, 0, c) = {1, 0, 1, 0x80};
        for (int c = 0; c < 256; ++c)
            Class2Builder::entry(b.type, 1, c) = {static_cast<CS_BYTE>(c), static_cast<CS_BYTE>(c), 1, 0x40};
        b.soundex.assign(256, 0);
        image_ = b.image();
        char name[] = "fourbyte";
        com_build_char_attrib(CS_2CLASS_IMAGE, 190, name, image_.data(), &attrib_);
    }
};

} // namespace kes::test

#endif
