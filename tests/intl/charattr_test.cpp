// Character attributes: the built-in ISO 8859-1 record against an
// independent reading of the code page, and every function over a class 1,
// a double-byte and a four-byte set.
#include <unicode/uchar.h>

#include <cctype>
#include <random>
#include <set>
#include <string>

#include "intl/charattr.h"
#include "intl/locale_records.h"
#include "intl/test_charsets.h"
#include "support/context.h"

namespace {

using kes::test::DoubleByte;
using kes::test::FourByte;
using kes::test::Latin1Image;

const CS_CHAR *ch(const void *p) { return static_cast<const CS_CHAR *>(p); }

CS_BYTE byte_char(int b) { return static_cast<CS_BYTE>(b); }

// ---- the built-in record ------------------------------------------------------

TEST(Iso1, RecordFields)
{
    const CS_ATTRIB *a = com_get_charattrib();
    EXPECT_EQ(a->cs_class, 1);
    EXPECT_EQ(a->cs_id, 1);
    EXPECT_EQ(a->cs_namelen, 5);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(a->cs_name)), "iso_1");
    EXPECT_EQ(a->cs_maxcharlen, 1);
    EXPECT_EQ(a->cs_ncharsize, 1);
    EXPECT_EQ(a->cs_nnorm, 0);
    EXPECT_EQ(a->cs_ntype, 1);
    EXPECT_EQ(a->cs_nsoundex, 1);
    EXPECT_EQ(a->cs_width_map, nullptr);
    EXPECT_EQ(a->cs_norm_map, nullptr);
    EXPECT_EQ(a->cs_type_map, com_get_typemap());
    EXPECT_EQ(a->cs_type_map, &ISO_1_type_map);
    EXPECT_EQ(a->cs_soundex, &ISO_1_soundex);
    EXPECT_EQ(com_get_charattrib(), a) << "one constant record";
}

// The table of ranges typed out by hand rather than derived:
// every byte must fall in exactly one row and match it.
struct Iso1Row {
    std::set<int> bytes;
    int type;
    int lex;
    int case_shift; // +32: lower = byte + 32; -32: upper = byte - 32; 0: none
};

std::set<int> range(int lo, int hi)
{
    std::set<int> s;
    for (int b = lo; b <= hi; ++b)
        s.insert(b);
    return s;
}

std::set<int> join(std::initializer_list<std::set<int>> parts)
{
    std::set<int> s;
    for (const auto &p : parts)
        s.insert(p.begin(), p.end());
    return s;
}

TEST(Iso1, TypeMapMatchesTheRangeTable)
{
    const Iso1Row rows[] = {
        {range(0x00, 0x08), 0x00, 8, 0},
        {range(0x09, 0x0F), 0x08, 8, 0},
        {range(0x10, 0x1F), 0x00, 8, 0},
        {{0x20}, 0x08, 8, 0},
        {join({{0x21, 0x25, 0x26}, range(0x28, 0x2F), range(0x3A, 0x3F), range(0x5B, 0x5E), {0x60},
               range(0x7B, 0x7E)}),
         0x20, 32, 0},
        {{0x22, 0x27}, 0x20, 16, 0},
        {{0x23, 0x40, 0x5F}, 0x20, 1, 0},
        {{0x24}, 0x20, 64, 0},
        {range(0x30, 0x39), 0x14, 2, 0},
        {range(0x41, 0x46), 0x11, 1, +32},
        {range(0x47, 0x5A), 0x01, 1, +32},
        {range(0x61, 0x66), 0x12, 1, -32},
        {range(0x67, 0x7A), 0x02, 1, -32},
        {{0x7F}, 0x00, 32, 0},
        {join({range(0x80, 0x8D), range(0x90, 0x9F)}), 0x00, 1, 0},
        {{0x8E, 0x8F, 0xA0, 0xAD}, 0x08, 1, 0},
        {join({{0xA1, 0xA2}, range(0xA6, 0xAC), range(0xAE, 0xBF), {0xD7, 0xF7}}), 0x20, 1, 0},
        {range(0xA3, 0xA5), 0x20, 64, 0},
        {join({range(0xC0, 0xD6), range(0xD8, 0xDE)}), 0x01, 1, +32},
        {{0xDF}, 0x01, 1, 0},
        {join({range(0xE0, 0xF6), range(0xF8, 0xFE)}), 0x02, 1, -32},
        {{0xFF}, 0x02, 1, 0},
    };
    int seen[256] = {};
    for (const Iso1Row &row : rows) {
        for (int b : row.bytes) {
            ++seen[b];
            const CHAR_MAP &e = ISO_1_type_map.chmap[b];
            SCOPED_TRACE(testing::Message() << "byte 0x" << std::hex << b);
            EXPECT_EQ(e.char_type, row.type);
            EXPECT_EQ(e.char_lex, row.lex);
            EXPECT_EQ(e.char_upper, row.case_shift == -32 ? b - 32 : b);
            EXPECT_EQ(e.char_lower, row.case_shift == +32 ? b + 32 : b);
        }
    }
    for (int b = 0; b < 256; ++b)
        EXPECT_EQ(seen[b], 1) << "byte " << b << " in " << seen[b] << " rows";
}

TEST(Iso1, Soundex)
{
    const std::string digits = "01230120022455012623010202";
    for (int b = 0; b < 256; ++b) {
        int want = 0;
        if (b >= 'A' && b <= 'Z')
            want = digits[b - 'A'];
        else if (b >= 'a' && b <= 'z')
            want = digits[b - 'a'];
        else if ((b >= 0xC0 && b <= 0xFF) && b != 0xD7 && b != 0xF7)
            want = '0';
        EXPECT_EQ(ISO_1_soundex.sound[b], want) << "byte " << b;
    }
}

// Differential: the ASCII half against the C library in the "C" locale.  The
// table counts 0E and 0F as white space where the C library does not.
TEST(Iso1, AsciiHalfAgreesWithTheCLibrary)
{
    for (int b = 0; b < 128; ++b) {
        const CS_BYTE c = byte_char(b);
        SCOPED_TRACE(testing::Message() << "byte " << b);
        EXPECT_EQ(comn_isupper(nullptr, ch(&c)) != 0, std::isupper(b) != 0);
        EXPECT_EQ(comn_islower(nullptr, ch(&c)) != 0, std::islower(b) != 0);
        EXPECT_EQ(comn_isalpha(nullptr, ch(&c)) != 0, std::isalpha(b) != 0);
        EXPECT_EQ(comn_isdigit(nullptr, ch(&c)) != 0, std::isdigit(b) != 0);
        EXPECT_EQ(comn_isxdigit(nullptr, ch(&c)) != 0, std::isxdigit(b) != 0);
        EXPECT_EQ(comn_ispunct(nullptr, ch(&c)) != 0, std::ispunct(b) != 0);
        EXPECT_EQ(comn_isspace(nullptr, ch(&c)) != 0, std::isspace(b) != 0 || b == 0x0E || b == 0x0F);
        CS_CHAR out;
        comn_toupper(nullptr, ch(&c), &out);
        EXPECT_EQ(static_cast<CS_BYTE>(out), std::toupper(b));
        comn_tolower(nullptr, ch(&c), &out);
        EXPECT_EQ(static_cast<CS_BYTE>(out), std::tolower(b));
    }
}

// Differential: all 256 code points against ICU's Unicode properties (ISO
// 8859-1 is the first block of Unicode).  Case mappings must agree wherever
// the partner is inside the code page; the classes may differ only at the
// table's deliberate odd entries.
TEST(Iso1, AgreesWithIcuUpToTheDeliberateOddities)
{
    std::set<int> upper_diff, lower_diff, digit_diff, space_diff;
    for (int b = 0; b < 256; ++b) {
        const CS_BYTE c = byte_char(b);
        if ((comn_isupper(nullptr, ch(&c)) != 0) != (u_isupper(b) != 0))
            upper_diff.insert(b);
        if ((comn_islower(nullptr, ch(&c)) != 0) != (u_islower(b) != 0))
            lower_diff.insert(b);
        if ((comn_isdigit(nullptr, ch(&c)) != 0) != (u_isdigit(b) != 0))
            digit_diff.insert(b);
        if ((comn_isspace(nullptr, ch(&c)) != 0) != (u_isspace(b) != 0))
            space_diff.insert(b);

        CS_CHAR out;
        const UChar32 up = u_toupper(b), low = u_tolower(b);
        comn_toupper(nullptr, ch(&c), &out);
        EXPECT_EQ(static_cast<CS_BYTE>(out), up <= 0xFF ? up : b) << "toupper " << b;
        comn_tolower(nullptr, ch(&c), &out);
        EXPECT_EQ(static_cast<CS_BYTE>(out), low <= 0xFF ? low : b) << "tolower " << b;
    }
    // Sharp s is filed as upper case, and the micro sign is a symbol, not a
    // letter, in this table.
    EXPECT_EQ(upper_diff, (std::set<int>{0xDF}));
    EXPECT_EQ(lower_diff, (std::set<int>{0xB5, 0xDF}));
    EXPECT_EQ(digit_diff, std::set<int>{});
    // 0E, 0F, 8E, 8F and the soft hyphen count as blanks; the four
    // information separators and NEL do not.
    std::set<int> icu_only{0x1C, 0x1D, 0x1E, 0x1F, 0x85};
    std::set<int> ours_only{0x0E, 0x0F, 0x8E, 0x8F, 0xAD};
    EXPECT_EQ(space_diff, join({icu_only, ours_only}));
}

TEST(Iso1, NullAttribStandsForTheBuiltInRecord)
{
    for (int b = 0; b < 256; ++b) {
        const CS_BYTE c = byte_char(b);
        CS_ATTRIB *iso = com_get_charattrib();
        EXPECT_EQ(comn_isalpha(nullptr, ch(&c)), comn_isalpha(iso, ch(&c)));
        EXPECT_EQ(comn_ispunct(nullptr, ch(&c)), comn_ispunct(iso, ch(&c)));
        EXPECT_EQ(comn_isgraph(nullptr, ch(&c)), 0) << "no graphic bit in this table";
        EXPECT_EQ(comn_get_lex(nullptr, ch(&c)), ISO_1_type_map.chmap[b].char_lex);
        EXPECT_EQ(comn_char_width(nullptr, ch(&c)), 1);
        EXPECT_EQ(comn_disp_width(nullptr, ch(&c)), 1);
        EXPECT_EQ(comn_to_ascii(nullptr, ch(&c)), ISO_1_type_map.chmap[b].char_lower);
    }
    EXPECT_EQ(comn_get_widthmap(nullptr), nullptr);
}

// ---- a class 1 image ----------------------------------------------------------------

TEST(Class1Image, BuildsARecordOverTheImage)
{
    Latin1Image set;
    CS_ATTRIB *a = set.get();
    EXPECT_EQ(a->cs_class, 1);
    EXPECT_EQ(a->cs_status, 0);
    EXPECT_EQ(a->cs_ntype, 1);
    EXPECT_EQ(a->cs_nsoundex, 1);
    EXPECT_EQ(a->cs_maxcharlen, 1);
    EXPECT_EQ(a->cs_width_map, nullptr);
    EXPECT_EQ(a->cs_norm_map, nullptr);
    EXPECT_EQ(reinterpret_cast<CS_BYTE *>(a->cs_soundex) - reinterpret_cast<CS_BYTE *>(a->cs_type_map), 1028);
    // comn_to_ascii of "A" in a class 1 set is "a".
    EXPECT_EQ(comn_to_ascii(a, "A"), 'a');
    EXPECT_EQ(comn_to_ascii(a, "7"), '7');
    EXPECT_TRUE(comn_isxdigit(a, "F"));
}

TEST(Class1Image, NamesAreCutTo29Bytes)
{
    std::vector<CS_BYTE> image(1285, 0);
    CS_ATTRIB a;
    char longname[] = "a_character_set_name_of_40_bytes_exactly";
    ASSERT_EQ(com_build_char_attrib(CS_1CLASS_IMAGE, 7, longname, image.data(), &a), CS_SUCCEED);
    EXPECT_EQ(a.cs_namelen, 29);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(a.cs_name)), std::string(longname, 29));
    EXPECT_EQ(a.cs_id, 7);
}

TEST(Class1Image, RefusesBadArguments)
{
    std::vector<CS_BYTE> image(1285, 0);
    CS_ATTRIB a;
    char name[] = "x";
    EXPECT_EQ(com_build_char_attrib(1000, 1, name, image.data(), &a), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(1003, 1, name, image.data(), &a), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(CS_1CLASS_IMAGE, 1, name, nullptr, &a), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(CS_2CLASS_IMAGE, 1, name, image.data(), nullptr), CS_FAIL);
}

TEST(AllocCharAttrib, GivesAZeroedRecord)
{
    CS_ATTRIB *a = com_alloc_char_attrib();
    ASSERT_NE(a, nullptr);
    CS_ATTRIB zero{};
    EXPECT_EQ(std::memcmp(a, &zero, sizeof zero), 0);
    com_free_char_attrib(a);
}

// ---- a double-byte set ----------------------------------------------------------------

TEST(DoubleByte, HeaderFieldsComeFromTheImage)
{
    DoubleByte set;
    CS_ATTRIB *a = set.get();
    EXPECT_EQ(a->cs_class, 2);
    EXPECT_EQ(a->cs_maxcharlen, 2);
    EXPECT_EQ(a->cs_ntype, 3);
    EXPECT_EQ(a->cs_nnorm, 3);
    EXPECT_EQ(a->cs_nsoundex, 1);
    EXPECT_EQ(a->cs_id, 140);
    EXPECT_NE(a->cs_width_map, nullptr);
    EXPECT_EQ(comn_get_widthmap(a), a->cs_width_map);
}

struct CharCase {
    std::string bytes; // the character, then a following byte
    CS_INT width;
    CS_INT disp;
    bool upper, lower, alpha, space, graph, punct;
    int to_upper_second; // the second byte after comn_toupper (-1: single byte)
    CS_INT ascii;
};

TEST(DoubleByte, ClassesCaseWidthsAndEquivalents)
{
    DoubleByte set;
    using namespace std::string_literals;
    const CharCase cases[] = {
        {"A!"s, 1, 1, true, false, true, false, false, false, -1, 'A'},
        {"z!"s, 1, 1, false, true, true, false, false, false, -1, 'z'},
        {" !"s, 1, 1, false, false, false, true, false, false, -1, ' '},
        {"\x82\x60"s, 2, 2, true, false, true, false, true, false, 0x60, 'A'},   // full-width A
        {"\x82\x79"s, 2, 2, true, false, true, false, true, false, 0x79, 'Z'},
        {"\x82\x81"s, 2, 2, false, true, true, false, true, false, 0x60, 'a'},   // full-width a
        {"\x82\x9A"s, 2, 2, false, true, true, false, true, false, 0x79, 'z'},
        {"\x82\x5F"s, 2, 2, false, false, false, false, true, false, 0x5F, 0},   // just below the letters
        {"\x81\x40"s, 2, 2, false, false, false, true, false, false, 0x40, ' '}, // full-width blank
        {"\x81\x66"s, 2, 2, false, false, false, false, true, true, 0x66, '\''},
        {"\xE0\x41"s, 2, 2, false, false, false, false, true, true, 0x41, 0},
        {"\xFC\xFC"s, 2, 2, false, false, false, false, true, true, 0xFC, 0},
        {"\xB1!"s, 1, 1, false, false, false, false, false, false, -1, 0},       // one-byte, no class
    };
    for (const CharCase &c : cases) {
        const CS_CHAR *p = c.bytes.data();
        SCOPED_TRACE(kes::test::hex(p, 2));
        EXPECT_EQ(comn_char_width(set, p), c.width);
        EXPECT_EQ(comn_disp_width(set, p), c.disp);
        EXPECT_EQ(comn_isupper(set, p) != 0, c.upper);
        EXPECT_EQ(comn_islower(set, p) != 0, c.lower);
        EXPECT_EQ(comn_isalpha(set, p) != 0, c.alpha);
        EXPECT_EQ(comn_isspace(set, p) != 0, c.space);
        EXPECT_EQ(comn_isgraph(set, p) != 0, c.graph);
        EXPECT_EQ(comn_ispunct(set, p) != 0, c.punct);
        EXPECT_EQ(comn_to_ascii(set, p), c.ascii);

        char out[4] = {'~', '~', '~', '~'};
        const CS_INT n = comn_toupper(set, p, out);
        EXPECT_EQ(n, c.width);
        if (c.to_upper_second >= 0) {
            EXPECT_EQ(out[0], p[0]) << "the lead byte is copied";
            EXPECT_EQ(static_cast<CS_BYTE>(out[1]), c.to_upper_second);
        }
        EXPECT_EQ(out[c.width], '~') << "wrote past the character";
        CS_CHAR *q = const_cast<CS_CHAR *>(p);
        comn_inc_char(set, &q);
        EXPECT_EQ(q - p, c.width);
    }
}

TEST(DoubleByte, ToLowerAndInPlaceCase)
{
    DoubleByte set;
    char s[] = "\x82\x60x";
    EXPECT_EQ(comn_tolower(set, s, s), 2);
    EXPECT_EQ(std::string(s, 3), "\x82\x81x");
    EXPECT_EQ(comn_toupper(set, s, s), 2);
    EXPECT_EQ(std::string(s, 3), "\x82\x60x");
    EXPECT_EQ(comn_toupper(set, s + 2, s + 2), 1);
    EXPECT_EQ(s[2], 'X');
}

TEST(DoubleByte, ToupperOfAByteWithoutPartnerCopiesTheCharacter)
{
    // In this set the bytes A1..DF have char_upper 0 in plane 0.
    DoubleByte set;
    const char s[] = "\xC5";
    char out[2] = {'~', '~'};
    EXPECT_EQ(comn_toupper(set, s, out), 1);
    EXPECT_EQ(out[0], s[0]);
    EXPECT_EQ(out[1], '~');
}

// comn_whole_char with every end position inside "a" + DB + DB + "b".
TEST(DoubleByte, WholeCharAtEveryEnd)
{
    DoubleByte set;
    const char s[] = "a\x82\x60\x81\x40" "b";
    struct Want {
        CS_INT wcbytes, part1, part2, nchars;
    };
    const Want want[] = {
        {0, 0, 0, 0}, // empty
        {1, 0, 0, 1}, // "a"
        {1, 1, 1, 1}, // a + lead: one byte of two before the end
        {3, 0, 0, 2},
        {3, 1, 1, 2},
        {5, 0, 0, 3},
        {6, 0, 0, 4},
    };
    for (int end = 0; end <= 6; ++end) {
        CS_INT wc = -1, p1 = -1, p2 = -1, n = -1;
        comn_whole_char(set, s, s + end, &wc, &p1, &p2, &n);
        SCOPED_TRACE(testing::Message() << "end " << end);
        EXPECT_EQ(wc, want[end].wcbytes);
        EXPECT_EQ(p1, want[end].part1);
        EXPECT_EQ(p2, want[end].part2);
        EXPECT_EQ(n, want[end].nchars);
    }
}

TEST(DoubleByte, StrToAsciiNormalizesInPlace)
{
    DoubleByte set;
    using namespace std::string_literals;
    std::string s = "x\x82\x60\x81\x40\xE0\x41\xB1\x82\x81"s;
    CS_INT n = -1;
    comn_str_to_ascii(s.data(), static_cast<CS_INT>(s.size()), s.data(), &n, set);
    EXPECT_EQ(s.substr(0, static_cast<size_t>(n)), "xA \xE0\x41\xB1" "a"s);
    // A lead byte cut off by the length is copied as it is.
    std::string cut = "q\x82"s;
    char out[4] = {};
    comn_str_to_ascii(cut.data(), 2, out, &n, set);
    EXPECT_EQ(std::string(out, static_cast<size_t>(n)), cut);
}

TEST(DoubleByte, MbStrchrSkipsTrailingBytes)
{
    DoubleByte set;
    // 0x60 ('`') occurs as the second byte of a double-byte character first.
    char s[] = "a\x82\x60`\x82";
    EXPECT_EQ(comn_mb_strchr(set, s, '`'), s + 3);
    EXPECT_EQ(comn_mb_strchr(nullptr, s, '`'), s + 2) << "single-byte view sees the trailing byte";
    EXPECT_EQ(comn_mb_strchr(set, s, 0x82), s + 1);
    EXPECT_EQ(comn_mb_strchr(set, s, 'z'), nullptr);
    EXPECT_EQ(comn_mb_strchr(set, s, 0), nullptr);
    // A lead byte right before the NUL does not step over the terminator.
    char t[] = "\x82";
    EXPECT_EQ(comn_mb_strchr(set, t, 'x'), nullptr);
    // Searching for a high byte given as a negative char works the same.
    EXPECT_EQ(comn_mb_strchr(set, s, static_cast<CS_CHAR>(0x82)), s + 1);
}

// ---- a four-byte set --------------------------------------------------------------------

TEST(FourByte, LeadFollowedByADigitByteStartsFourBytes)
{
    FourByte set;
    EXPECT_EQ(comn_char_width(set, "\x81\x30\x81\x30"), 4);
    EXPECT_EQ(comn_char_width(set, "\x81\x39\x81\x30"), 4);
    EXPECT_EQ(comn_char_width(set, "\x81\x40"), 2);
    EXPECT_EQ(comn_char_width(set, "\x81\x2F"), 2);
    EXPECT_EQ(comn_char_width(set, "\x81\x3A"), 2);
    EXPECT_EQ(comn_char_width(set, "\x30\x30"), 1);
    EXPECT_EQ(comn_char_width(set, "\xFF\x30"), 1) << "entry 255 keeps its own length";
    EXPECT_EQ(comn_disp_width(set, "\xFF"), 15);
}

TEST(FourByte, WholeCharDoesNotPeekPastTheEnd)
{
    FourByte set;
    const char s[] = "a\x81\x30\x82\x31z";
    struct Want {
        CS_INT wcbytes, part1, part2, nchars;
    };
    // With only the lead byte in view the length is the provisional two.
    const Want want[] = {{0, 0, 0, 0}, {1, 0, 0, 1}, {1, 1, 1, 1}, {1, 2, 2, 1},
                         {1, 3, 1, 1}, {5, 0, 0, 2}, {6, 0, 0, 3}};
    for (int end = 0; end <= 6; ++end) {
        CS_INT wc, p1, p2, n;
        comn_whole_char(set, s, s + end, &wc, &p1, &p2, &n);
        SCOPED_TRACE(testing::Message() << "end " << end);
        EXPECT_EQ(wc, want[end].wcbytes);
        EXPECT_EQ(p1, want[end].part1);
        EXPECT_EQ(p2, want[end].part2);
        EXPECT_EQ(n, want[end].nchars);
    }
}

TEST(FourByte, ToupperKeepsTheWholeCharacter)
{
    FourByte set;
    const char s[] = "\x81\x30\x82\x31";
    char out[5] = {'~', '~', '~', '~', '~'};
    EXPECT_EQ(comn_toupper(set, s, out), 4);
    EXPECT_EQ(std::string(out, 5), "\x81\x30\x82\x31~");
}

TEST(FourByte, StrToAsciiWithoutNormMapUsesTheFirstByteEntry)
{
    FourByte set;
    const char s[] = "Ab\x81\x30\x82\x31";
    char out[8];
    CS_INT n;
    comn_str_to_ascii(s, 6, out, &n, set);
    // Letters come back lower case; the first-byte entry of a lead byte has
    // char_lower 0, so the character is copied.
    EXPECT_EQ(std::string(out, static_cast<size_t>(n)), "ab\x81\x30\x82\x31");
}

// ---- seeded differential: the walkers against an independent model ---------------------------

// Character starts of a byte string by the published rules of the two test
// sets, written without the width map: [0, starts..., n] with a partial last
// character reported by its full length.
struct Model {
    bool four; // the four-byte set, else the double-byte one
    CS_INT len_at(const std::vector<CS_BYTE> &s, size_t i) const
    {
        const int b = s[i];
        if (four) {
            if (b < 0x81 || b > 0xFE)
                return 1;
            return (i + 1 < s.size() && s[i + 1] >= 0x30 && s[i + 1] <= 0x39) ? 4 : 2;
        }
        return kes::test::dbcs_lead(b) ? 2 : 1;
    }
};

TEST(Walkers, WholeCharAndTruncateAgreeWithTheModelOnRandomText)
{
    DoubleByte dbcs;
    FourByte four;
    std::mt19937 rng(20261122);
    for (int round = 0; round < 6000; ++round) {
        const bool is_four = round % 2;
        const Model model{is_four};
        CS_ATTRIB *set = is_four ? four.get() : dbcs.get();
        // Bytes biased toward lead bytes and the digit range that makes a
        // four-byte character.
        std::vector<CS_BYTE> s(rng() % 24 + 1);
        for (CS_BYTE &b : s) {
            const unsigned pick = rng() % 4;
            b = static_cast<CS_BYTE>(pick == 0 ? 0x81 + rng() % 0x7E : pick == 1 ? 0x30 + rng() % 10 : rng() % 256);
        }
        const auto n = static_cast<CS_INT>(s.size());
        const CS_INT end = static_cast<CS_INT>(rng() % (s.size() + 1));
        // Model of comn_whole_char over [0, end): second bytes past end are
        // unknown, so a lead there counts as two bytes.
        std::vector<CS_BYTE> view(s.begin(), s.begin() + end);
        CS_INT at = 0, chars = 0, part1 = 0, part2 = 0;
        while (at < end) {
            const CS_INT len = model.len_at(view, static_cast<size_t>(at));
            if (at + len > end) {
                part1 = end - at;
                part2 = len - part1;
                break;
            }
            at += len;
            ++chars;
        }
        CS_INT wc, p1, p2, nc;
        const auto *text = reinterpret_cast<const CS_CHAR *>(s.data());
        comn_whole_char(set, text, text + end, &wc, &p1, &p2, &nc);
        ASSERT_EQ(std::vector<CS_INT>({wc, p1, p2, nc}), std::vector<CS_INT>({at, part1, part2, chars}))
            << kes::test::hex(s.data(), s.size()) << " end " << end << (is_four ? " four" : " dbcs");

        // Model of comnb_truncate_chars(s, n, maxlen).
        const CS_INT maxlen = static_cast<CS_INT>(rng() % (s.size() + 3));
        CS_INT cut = 0;
        if (n < maxlen) {
            cut = n;
        } else {
            for (CS_INT len; cut < maxlen && cut + (len = model.len_at(s, static_cast<size_t>(cut))) <= maxlen;)
                cut += len;
        }
        ASSERT_EQ(comnb_truncate_chars(set, s.data(), n, maxlen), cut)
            << kes::test::hex(s.data(), s.size()) << " maxlen " << maxlen << (is_four ? " four" : " dbcs");

        // Stepping with comn_inc_char visits the model's character starts
        // (two NULs after the text stand for the bytes it may look at).
        std::vector<CS_BYTE> padded(s.size() + 2, 0);
        std::copy(s.begin(), s.end(), padded.begin());
        CS_CHAR *p = reinterpret_cast<CS_CHAR *>(padded.data());
        for (CS_INT pos = 0; pos < n; pos += model.len_at(s, static_cast<size_t>(pos))) {
            ASSERT_EQ(p - reinterpret_cast<CS_CHAR *>(padded.data()), pos);
            comn_inc_char(set, &p);
        }
    }
}

// ---- broken records never read out of their maps ----------------------------------------

TEST(BrokenRecord, LeadBytePlaneBeyondTheMapFallsBackToTheFirstEntry)
{
    CS_TYPE_MAP plane{};
    plane.chmap[0x90] = {200, 0, 1, 0x80 | CS_CT_PUNCT};
    CS_ATTRIB a{};
    a.cs_type_map = &plane;
    a.cs_ntype = 1;
    EXPECT_TRUE(comn_ispunct(&a, "\x90\x41"));
    char out[2];
    EXPECT_EQ(comn_toupper(&a, "\x90\x41", out), 1);
    EXPECT_EQ(out[0], '\x90');
}

TEST(BrokenRecord, ZeroWidthEntriesStillAdvance)
{
    CS_BYTE width[256] = {};
    CS_ATTRIB a{};
    a.cs_width_map = width;
    CS_INT wc, p1, p2, n;
    const char s[] = "abc";
    comn_whole_char(&a, s, s + 3, &wc, &p1, &p2, &n);
    EXPECT_EQ(n, 3);
    EXPECT_EQ(comn_char_width(&a, s), 1);
}

TEST(BrokenRecord, NoTypeMapHasNoClassesAndTheByteIsItsOwnEquivalent)
{
    CS_ATTRIB a{};
    EXPECT_FALSE(comn_isalpha(&a, "A"));
    EXPECT_EQ(comn_get_lex(&a, "A"), 0);
    EXPECT_EQ(comn_to_ascii(&a, "A"), 'A');
    char out;
    EXPECT_EQ(comn_toupper(&a, "a", &out), 1);
    EXPECT_EQ(out, 'a');
}

// ---- the road from a format to its attributes -----------------------------------------------

TEST(IntlCharattr, DefaultsWithoutLocales)
{
    kes::test::Context ctx;
    CS_DATAFMT f = kes::test::fmt(CS_CHAR_TYPE, 10);
    EXPECT_EQ(com_intl_charattr(nullptr, nullptr), com_get_charattrib());
    EXPECT_EQ(com_intl_charattr(nullptr, &f), com_get_charattrib());
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), com_get_charattrib());
    EXPECT_EQ(com_intl_charattr(ctx.get(), nullptr), com_get_charattrib());
}

TEST(IntlCharattr, FormatLocaleFirstThenTheContexts)
{
    DoubleByte dbcs;
    FourByte four;
    CsCharDesc dbcs_desc{}, four_desc{};
    dbcs_desc.char_attrib = dbcs;
    four_desc.char_attrib = four;
    CsLocCache dbcs_cache{}, four_cache{}, empty_cache{};
    dbcs_cache.locchardesc = &dbcs_desc;
    four_cache.locchardesc = &four_desc;
    CS_LOCALE fmt_loc{}, ctx_loc{}, bare_loc{};
    fmt_loc.ctypeptr = &dbcs_cache;
    ctx_loc.ctypeptr = &four_cache;
    bare_loc.ctypeptr = &empty_cache;

    kes::test::Context ctx;
    CS_DATAFMT f = kes::test::fmt(CS_CHAR_TYPE, 10);
    ctx->ctxlocale = &ctx_loc;
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), four.get());
    f.locale = &fmt_loc;
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), dbcs.get());
    EXPECT_EQ(com_intl_charattr(nullptr, &f), dbcs.get());
    f.locale = &bare_loc; // a locale whose character set is not loaded
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), com_get_charattrib());
    ctx->ctxlocale = nullptr;
}

// ---- assertions -------------------------------------------------------------------------------

TEST(CharattrDeath, NullPointersEndTheProcess)
{
    CS_INT n;
    EXPECT_NULL_POINTER(comn_isalpha(nullptr, nullptr));
    EXPECT_NULL_POINTER(comn_toupper(nullptr, "a", nullptr));
    EXPECT_NULL_POINTER(comn_whole_char(nullptr, "a", "a", &n, &n, nullptr, &n));
    EXPECT_NULL_POINTER(comn_str_to_ascii("a", 1, nullptr, &n, nullptr));
}

} // namespace
