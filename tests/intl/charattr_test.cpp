// Character attributes: the built-in ISO 8859-1 record against the C library
// and ICU, and the functions over a class 1, a double-byte and a four-byte
// set, with the walkers checked against an independent model.
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

using namespace std::string_literals;
using kes::test::DoubleByte;
using kes::test::FourByte;

struct Walk {
    CS_INT wcbytes, part1, part2, nchars;
    bool operator==(const Walk &) const = default;
};

Walk whole_char(CS_ATTRIB *set, const void *start, size_t end)
{
    Walk w{-1, -1, -1, -1};
    const auto *p = static_cast<const CS_CHAR *>(start);
    comn_whole_char(set, p, p + end, &w.wcbytes, &w.part1, &w.part2, &w.nchars);
    return w;
}

// The classes of a character as letters: u upper, l lower, a alpha, d digit,
// x hex digit, s space, p punct, g graph.
using ClassFn = CS_BOOL (*)(CS_ATTRIB *, const CS_CHAR *);
std::string classes(CS_ATTRIB *ca, const CS_CHAR *p)
{
    const std::pair<char, ClassFn> tests[] = {{'u', comn_isupper}, {'l', comn_islower}, {'a', comn_isalpha},
                                              {'d', comn_isdigit}, {'x', comn_isxdigit}, {'s', comn_isspace},
                                              {'p', comn_ispunct}, {'g', comn_isgraph}};
    std::string s;
    for (auto [letter, fn] : tests)
        if (fn(ca, p) != 0)
            s += letter;
    return s;
}

// Every byte of the built-in record (a null CS_ATTRIB) against ICU (ISO
// 8859-1 is the first block of Unicode) and the ASCII half against the C
// library in the "C" locale.  Case partners agree wherever they lie inside
// the code page; classes differ only at the table's deliberate odd entries.
TEST(Iso1, AgreesWithIcuAndTheCLibraryUpToTheDeliberateOddities)
{
    std::set<int> upper, lower, digit, space, punct, c_library;
    for (int b = 0; b < 256; ++b) {
        const char c = static_cast<char>(b);
        const std::string ours = classes(nullptr, &c);
        const auto differ = [&](std::set<int> &diff, char letter, bool icu) {
            if ((ours.find(letter) != std::string::npos) != icu)
                diff.insert(b);
        };
        differ(upper, 'u', u_isupper(b));
        differ(lower, 'l', u_islower(b));
        differ(digit, 'd', u_isdigit(b));
        differ(space, 's', u_isspace(b));
        differ(punct, 'p', u_isgraph(b) && !u_isalnum(b));
        char up, low;
        comn_toupper(nullptr, &c, &up);
        comn_tolower(nullptr, &c, &low);
        EXPECT_EQ(static_cast<CS_BYTE>(up), u_toupper(b) <= 0xFF ? u_toupper(b) : b) << b;
        EXPECT_EQ(static_cast<CS_BYTE>(low), u_tolower(b) <= 0xFF ? u_tolower(b) : b) << b;
        EXPECT_EQ(comn_to_ascii(nullptr, &c), static_cast<CS_BYTE>(low)) << "no normalization map: the lower case";
        EXPECT_EQ(comn_char_width(nullptr, &c) * comn_disp_width(nullptr, &c), 1);
        if (b < 128) {
            const std::string c_classes = std::string(std::isupper(b) ? "u" : "") + (std::islower(b) ? "l" : "") +
                                          (std::isalpha(b) ? "a" : "") + (std::isdigit(b) ? "d" : "") +
                                          (std::isxdigit(b) ? "x" : "") + (std::isspace(b) ? "s" : "") +
                                          (std::ispunct(b) ? "p" : "");
            if (ours != c_classes || up != std::toupper(b) || low != std::tolower(b))
                c_library.insert(b);
        }
    }
    // Sharp s is filed as upper case; the micro sign and the two ordinal
    // indicators are symbols, not letters.
    EXPECT_EQ(upper, (std::set<int>{0xDF}));
    EXPECT_EQ(lower, (std::set<int>{0xB5, 0xDF}));
    EXPECT_EQ(digit, std::set<int>{});
    EXPECT_EQ(punct, (std::set<int>{0xAA, 0xB5, 0xBA}));
    // 0E, 0F, 8E, 8F and the soft hyphen count as blanks; the four
    // information separators and NEL do not.
    EXPECT_EQ(space, (std::set<int>{0x0E, 0x0F, 0x1C, 0x1D, 0x1E, 0x1F, 0x85, 0x8E, 0x8F, 0xAD}));
    EXPECT_EQ(c_library, (std::set<int>{0x0E, 0x0F}));
}

// No oracle knows the lexical classes: the boundaries of each range.
TEST(Iso1, LexicalClassesAtTheirBoundaries)
{
    const std::pair<int, int> cases[] = {
        {0x00, CS_LEX_SPACE}, {0x20, CS_LEX_SPACE}, {0x21, CS_LEX_PUNCT}, {'"', CS_LEX_QUOTE}, {'#', CS_LEX_IDENT},
        {'$', CS_LEX_MONEY},  {'%', CS_LEX_PUNCT},  {'\'', CS_LEX_QUOTE}, {'/', CS_LEX_PUNCT}, {'0', CS_LEX_DIGIT},
        {'9', CS_LEX_DIGIT},  {':', CS_LEX_PUNCT},  {'@', CS_LEX_IDENT},  {'A', CS_LEX_IDENT}, {'Z', CS_LEX_IDENT},
        {'[', CS_LEX_PUNCT},  {'_', CS_LEX_IDENT},  {'`', CS_LEX_PUNCT},  {'z', CS_LEX_IDENT}, {'{', CS_LEX_PUNCT},
        {0x7F, CS_LEX_PUNCT}, {0x80, CS_LEX_IDENT}, {0xA2, CS_LEX_IDENT}, {0xA3, CS_LEX_MONEY}, {0xA5, CS_LEX_MONEY},
        {0xA6, CS_LEX_IDENT}, {0xD7, CS_LEX_IDENT}, {0xFF, CS_LEX_IDENT},
    };
    for (auto [b, lex] : cases) {
        const char c = static_cast<char>(b);
        EXPECT_EQ(comn_get_lex(nullptr, &c), lex) << "byte " << b;
    }
    // Types the oracles above leave open: high-half hex letters and controls.
    EXPECT_FALSE(comn_isxdigit(nullptr, "\xC1"));
    EXPECT_FALSE(comn_ispunct(nullptr, "\x9F"));
}

// Soundex groups: BFPV 1, CGJKQSXZ 2, DT 3, L 4, MN 5, R 6, other letters
// '0' (Latin-1 letters too), and 0 for anything that is no letter.
TEST(Iso1, SoundexCodes)
{
    const std::string groups[] = {"AEIOUYHW", "BFPV", "CGJKQSXZ", "DT", "L", "MN", "R"};
    for (int b = 0; b < 256; ++b) {
        int want = (b >= 0xC0 && b != 0xD7 && b != 0xF7) ? '0' : 0;
        for (int g = 0; g < 7; ++g)
            if (std::isalpha(b) && groups[g].find(static_cast<char>(std::toupper(b))) != std::string::npos)
                want = '0' + g;
        EXPECT_EQ(ISO_1_soundex.sound[b], want) << "byte " << b;
    }
}

TEST(BuildCharAttrib, Class1ImageNameCutAndRefusals)
{
    std::vector<CS_BYTE> image(1285, 0);
    std::memcpy(image.data(), com_get_typemap(), sizeof(CS_TYPE_MAP));
    char name[] = "a_character_set_name_of_40_bytes_exactly";
    CS_ATTRIB a;
    ASSERT_EQ(com_build_char_attrib(CS_1CLASS_IMAGE, 7, name, image.data(), &a), CS_SUCCEED);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(a.cs_name), size_t(a.cs_namelen)), std::string(name, 29));
    EXPECT_EQ(reinterpret_cast<CS_BYTE *>(a.cs_soundex) - image.data(), 1028);
    EXPECT_EQ(comn_to_ascii(&a, "A"), 'a') << "class 1 letters come back lower case";
    for (CS_INT type : {1000, 1003})
        EXPECT_EQ(com_build_char_attrib(type, 1, name, image.data(), &a), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(CS_1CLASS_IMAGE, 1, name, nullptr, &a), CS_FAIL);
    EXPECT_EQ(com_build_char_attrib(CS_2CLASS_IMAGE, 1, name, image.data(), nullptr), CS_FAIL);
    CS_ATTRIB *fresh = com_alloc_char_attrib();
    const CS_ATTRIB zero{};
    EXPECT_EQ(std::memcmp(fresh, &zero, sizeof zero), 0);
    com_free_char_attrib(fresh);
}

TEST(DoubleByte, ClassesCaseWidthsAndEquivalents)
{
    DoubleByte set;
    const struct {
        std::string ch; // the character and a following byte
        CS_INT width;
        std::string classes, upper, lower;
        CS_INT ascii;
    } cases[] = {
        {"A!", 1, "uax", "A", "a", 'A'},
        {"z!", 1, "la", "Z", "z", 'z'},
        {"\x82\x60", 2, "uag", "\x82\x60", "\x82\x81", 'A'}, // full-width A
        {"\x82\x9A", 2, "lag", "\x82\x79", "\x82\x9A", 'z'}, // full-width z
        {"\x82\x5F", 2, "g", "\x82\x5F", "\x82\x5F", 0},     // just below the letters
        {"\x81\x40", 2, "s", "\x81\x40", "\x81\x40", ' '},
        {"\x81\x66", 2, "pg", "\x81\x66", "\x81\x66", '\''},
        {"\xFC\xFC", 2, "pg", "\xFC\xFC", "\xFC\xFC", 0},
        {"\xB1!", 1, "", "\xB1", "\xB1", 0}, // one byte without partner: copied
    };
    for (const auto &c : cases) {
        const CS_CHAR *p = c.ch.data();
        SCOPED_TRACE(kes::test::hex(p, 2));
        EXPECT_EQ(classes(set, p), c.classes);
        EXPECT_EQ(comn_disp_width(set, p), c.width); // the byte length is the walker model's below
        EXPECT_EQ(comn_to_ascii(set, p), c.ascii);
        for (auto [fn, want] : {std::pair{&comn_toupper, c.upper}, std::pair{&comn_tolower, c.lower}}) {
            char out[4] = {'~', '~', '~', '~'};
            EXPECT_EQ(fn(set, p, out), c.width);
            EXPECT_EQ(std::string(out, 3), want + std::string(3 - want.size(), '~')) << "wrote past the character";
        }
    }
    char s[] = "\x82\x60x"; // case changes in place
    EXPECT_EQ(comn_tolower(set, s, s), 2);
    EXPECT_EQ(comn_toupper(set, s + 2, s + 2), 1);
    EXPECT_EQ(std::string(s), "\x82\x81X");
}

TEST(DoubleByte, StrToAsciiAndMbStrchrStepOverWholeCharacters)
{
    DoubleByte set;
    std::string n = "x\x82\x60\x81\x40\xE0\x41\xB1\x82\x81q\x82"s; // ends in a lead cut off by the length
    CS_INT len = -1;
    comn_str_to_ascii(n.data(), static_cast<CS_INT>(n.size()), n.data(), &len, set);
    EXPECT_EQ(n.substr(0, static_cast<size_t>(len)), "xA \xE0\x41\xB1" "aq\x82"s);

    char s[] = "a\x82\x60`\x82"; // '`' (0x60) occurs first as a second byte
    EXPECT_EQ(comn_mb_strchr(set, s, '`'), s + 3);
    EXPECT_EQ(comn_mb_strchr(nullptr, s, '`'), s + 2) << "single-byte view sees the second byte";
    EXPECT_EQ(comn_mb_strchr(set, s, static_cast<CS_CHAR>(0x82)), s + 1) << "a negative char is the same byte";
    EXPECT_EQ(comn_mb_strchr(set, s, 'z'), nullptr);
    EXPECT_EQ(comn_mb_strchr(set, s, 0), nullptr);
    char t[] = "\x82"; // a lead right before the NUL does not step over it
    EXPECT_EQ(comn_mb_strchr(set, t, 'x'), nullptr);
}

TEST(FourByte, LeadAndDigitByteStartFourBytes)
{
    FourByte set; // the walker model below covers the other widths
    EXPECT_EQ(comn_char_width(set, "\xFF\x30"), 1) << "entry 255 keeps its own length";
    EXPECT_EQ(comn_disp_width(set, "\xFF"), 15);
    // Case keeps the whole character; without a normalization map the
    // first byte's entry decides, and a lead's char_lower is 0.
    char out[8] = "~~~~~";
    EXPECT_EQ(comn_toupper(set, "\x81\x30\x82\x31", out), 4);
    EXPECT_EQ(std::string(out), "\x81\x30\x82\x31~");
    CS_INT n;
    comn_str_to_ascii("Ab\x81\x30\x82\x31", 6, out, &n, set);
    EXPECT_EQ(std::string(out, static_cast<size_t>(n)), "ab\x81\x30\x82\x31");
}

// The length of the character at s[i] by the published rules of the two
// sets, written without their width maps.  Bytes past s are unknown.
CS_INT model_len(bool four, const std::vector<CS_BYTE> &s, size_t i)
{
    const int b = s[i];
    if (!four)
        return kes::test::dbcs_lead(b) ? 2 : 1;
    if (b < 0x81 || b > 0xFE)
        return 1;
    return (i + 1 < s.size() && s[i + 1] >= 0x30 && s[i + 1] <= 0x39) ? 4 : 2;
}

TEST(Walkers, WholeCharTruncateIncCharAndWidthAgreeWithTheModel)
{
    DoubleByte dbcs;
    FourByte fourbyte;
    std::mt19937 rng(20261122);
    for (int round = 0; round < 6000; ++round) {
        const bool four = round % 2;
        CS_ATTRIB *set = four ? fourbyte.get() : dbcs.get();
        // Biased toward lead bytes and the digits that make four bytes.
        std::vector<CS_BYTE> s(rng() % 24 + 1);
        for (CS_BYTE &b : s) {
            const unsigned pick = rng() % 4;
            b = static_cast<CS_BYTE>(pick == 0 ? 0x81 + rng() % 0x7E : pick == 1 ? 0x30 + rng() % 10 : rng() % 256);
        }
        const auto n = static_cast<CS_INT>(s.size());
        const std::string where = kes::test::hex(s.data(), s.size()) + (four ? " four" : " dbcs");

        const auto end = static_cast<CS_INT>(rng() % (s.size() + 1));
        const std::vector<CS_BYTE> view(s.begin(), s.begin() + end);
        Walk want{0, 0, 0, 0};
        while (want.wcbytes < end) {
            const CS_INT len = model_len(four, view, static_cast<size_t>(want.wcbytes));
            if (want.wcbytes + len > end) {
                want.part1 = end - want.wcbytes;
                want.part2 = len - want.part1;
                break;
            }
            want.wcbytes += len;
            ++want.nchars;
        }
        ASSERT_EQ(whole_char(set, s.data(), static_cast<size_t>(end)), want) << where << " end " << end;

        const auto maxlen = static_cast<CS_INT>(rng() % (s.size() + 3));
        CS_INT cut = n < maxlen ? n : 0; // below the limit the length stands
        for (CS_INT len; cut < n && cut + (len = model_len(four, s, static_cast<size_t>(cut))) <= maxlen;)
            cut += len;
        ASSERT_EQ(comnb_truncate_chars(set, s.data(), n, maxlen), cut) << where << " maxlen " << maxlen;

        // Two NULs after the text stand for the bytes comn_inc_char may read.
        std::vector<CS_BYTE> padded(s);
        padded.resize(s.size() + 2, 0);
        auto *p = reinterpret_cast<CS_CHAR *>(padded.data());
        for (CS_INT pos = 0; pos < n; pos += model_len(four, s, static_cast<size_t>(pos))) {
            ASSERT_EQ(p - reinterpret_cast<CS_CHAR *>(padded.data()), pos) << where;
            ASSERT_EQ(comn_char_width(set, p), model_len(four, s, static_cast<size_t>(pos))) << where << " at " << pos;
            comn_inc_char(set, &p);
        }
    }
}

TEST(BrokenRecord, StaysInsideItsMaps)
{
    // A lead byte whose plane the record lacks falls back to its own entry.
    CS_TYPE_MAP plane{};
    plane.chmap[0x90] = {200, 0, 1, 0x80 | CS_CT_PUNCT};
    CS_ATTRIB a{};
    a.cs_type_map = &plane;
    a.cs_ntype = 1;
    char out[2];
    EXPECT_EQ(classes(&a, "\x90\x41"), "p");
    EXPECT_EQ(comn_toupper(&a, "\x90\x41", out), 1);
    EXPECT_EQ(out[0], '\x90');
    // Zero width entries still advance.
    CS_BYTE width[256] = {};
    CS_ATTRIB w{};
    w.cs_width_map = width;
    EXPECT_EQ(whole_char(&w, "abc", 3), (Walk{3, 0, 0, 3}));
    // No type map: no classes, and the byte is its own equivalent.
    CS_ATTRIB bare{};
    EXPECT_EQ(classes(&bare, "A"), "");
    EXPECT_EQ(comn_get_lex(&bare, "A"), 0);
    EXPECT_EQ(comn_to_ascii(&bare, "A"), 'A');
    EXPECT_EQ(comn_toupper(&bare, "a", out), 1);
    EXPECT_EQ(out[0], 'a');
}

// The format's locale first, then the context's, then the built-in set.
TEST(IntlCharattr, FormatLocaleThenContextLocaleThenTheBuiltIn)
{
    DoubleByte dbcs;
    FourByte four;
    kes::test::LoadedLocale on_fmt(dbcs), on_ctx(four), unloaded(nullptr);
    kes::test::Context ctx;
    CS_DATAFMT f = kes::test::fmt(CS_CHAR_TYPE, 10);
    CS_ATTRIB *iso = com_get_charattrib();
    EXPECT_EQ(com_intl_charattr(nullptr, nullptr), iso);
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), iso);
    ctx->ctxlocale = &on_ctx.locale;
    EXPECT_EQ(com_intl_charattr(ctx.get(), nullptr), four.get());
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), four.get());
    f.locale = &on_fmt.locale;
    EXPECT_EQ(com_intl_charattr(nullptr, &f), dbcs.get());
    f.locale = &unloaded.locale;
    EXPECT_EQ(com_intl_charattr(ctx.get(), &f), iso);
    ctx->ctxlocale = nullptr;
}

TEST(CharattrDeath, NullPointersEndTheProcess)
{
    CS_INT n;
    EXPECT_NULL_POINTER(comn_isalpha(nullptr, nullptr));
    EXPECT_NULL_POINTER(comn_toupper(nullptr, "a", nullptr));
    EXPECT_NULL_POINTER(comn_whole_char(nullptr, "a", "a", &n, &n, nullptr, &n));
    EXPECT_NULL_POINTER(comn_str_to_ascii("a", 1, nullptr, &n, nullptr));
}

} // namespace
