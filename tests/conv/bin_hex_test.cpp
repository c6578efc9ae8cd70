// The server layer's hexadecimal text of integers: digits written backwards
// into the whole capacity, and read back with the digit count tested before
// the value.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "intl/test_charsets.h"
#include "support/context.h"

namespace {

using namespace std::string_view_literals;
using kes::test::code_name;
using ServerFunc = CS_RETCODE (*)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *);

TEST(BinHex, IntToHexFillsTheWholeCapacity)
{
    struct Case { ServerFunc f; CS_INT size; uint64_t value; CS_INT maxlen; CS_RETCODE rc; std::string_view text; };
    const Case cases[] = {
        {comnb_i4tohex, 4, 255, 9, CS_SUCCEED, "000000FF\0"sv}, {comnb_i4tohex, 4, 255, 3, CS_SUCCEED, "FF\0"sv},
        {comnb_i4tohex, 4, 255, 2, CS_EOVERFLOW, ""}, {comnb_i4tohex, 4, 0, 2, CS_SUCCEED, "0\0"sv},
        {comnb_i4tohex, 4, 0xFFFFFFFF, 12, CS_SUCCEED, "000FFFFFFFF\0"sv},
        {comnb_i4tohex, 4, 0xFFFFFFFF, 4, CS_EOVERFLOW, ""}, {comnb_i4tohex, 4, 5, 1, CS_ESYNTAX, ""},
        {comnb_i4tohex, 4, 5, 0, CS_ESYNTAX, ""}, {comnb_ui4tohex, 4, 0x80000000u, 9, CS_SUCCEED, "80000000\0"sv},
        {comnb_i8tohex, 8, 0x8000000000000000ull, 17, CS_SUCCEED, "8000000000000000\0"sv},
        {comnb_i8tohex, 8, ~0ull, 16, CS_EOVERFLOW, ""},
        {comnb_ui8tohex, 8, ~0ull, 17, CS_SUCCEED, "FFFFFFFFFFFFFFFF\0"sv},
    };
    CAST_CONTEXT cc{};
    for (const Case &c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " into " + std::to_string(c.maxlen));
        uint64_t v = c.value;
        char out[24];
        std::memset(out, '#', sizeof out);
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), c.size, c.size);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(out), -5, c.maxlen);
        EXPECT_EQ(code_name(c.f(&cc, &src, &dest)), code_name(c.rc));
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(std::string_view(out, static_cast<size_t>(c.maxlen)), c.text);
        }
        EXPECT_EQ(out[c.maxlen], '#') << "written past the capacity";
        EXPECT_EQ(dest.len, -5);
    }
    uint32_t v = 1;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 4, 4);
    __CONSTANT null_value = kes::test::constant(nullptr, 0, 9);
    EXPECT_EQ(comnb_i4tohex(&cc, &src, &null_value), CS_ESYNTAX);
}

// Leading zeros do not count, so a long text is cut, never refused for its
// value; a bad digit after the cut is not seen.
TEST(BinHex, HexToIntCountsDigitsBeforeTheValue)
{
    kes::test::DoubleByte set; // 82 50 is a full-width 1, 82 65 an F, 82 5F has no equivalent
    struct Case { ServerFunc f; CS_INT size; std::string text; CS_RETCODE rc; uint64_t value; CS_INT len;
                  CS_ATTRIB *attr = nullptr; };
    const Case cases[] = {
        {comnb_hextoi4, 4, "0x0000000FF", CS_SUCCEED, 0xFF, 4},
        {comnb_hextoi4, 4, "12345678", CS_SUCCEED, 0x12345678, 4},
        {comnb_hextoi4, 4, "123456789", CS_TRUNCATED, 0x12345678, 4},
        {comnb_hextoi4, 4, "FFFFFFFFF", CS_TRUNCATED, 0xFFFFFFFF, 4},
        {comnb_hextoi4, 4, "000000000000000000001", CS_SUCCEED, 1, 4}, {comnb_hextoi4, 4, "0X", CS_SUCCEED, 0, 4},
        {comnb_hextoi4, 4, "", CS_SUCCEED, 0, 4}, {comnb_hextoi4, 4, " 12", CS_ESYNTAX, 0, 0},
        {comnb_hextoi4, 4, "12 ", CS_ESYNTAX, 0, 0}, {comnb_hextoi4, 4, "0x0x1", CS_ESYNTAX, 0, 0},
        {comnb_hextoi4, 4, "123456789z", CS_TRUNCATED, 0x12345678, 4},
        {comnb_hextoi4, 4, "1234567z9", CS_ESYNTAX, 0, 0},
        {comnb_hextoi4, 4, std::string("1F\0zz", 5), CS_SUCCEED, 0x1F, 4}, // a NUL ends the text
        {comnb_hextoi4, 4, std::string(255, '0'), CS_SUCCEED, 0, 4},
        {comnb_hextoi4, 4, std::string(256, '0'), CS_EOVERFLOW, 0, -5},
        {comnb_hextoui4, 4, "0xdeadBEEF", CS_SUCCEED, 0xDEADBEEF, 4},
        {comnb_hextoi8, 8, "0x8000000000000000", CS_SUCCEED, 0x8000000000000000ull, 8},
        {comnb_hextoi8, 8, "123456789abcdef01", CS_TRUNCATED, 0x123456789ABCDEF0ull, 8},
        {comnb_hextoi8, 8, "g", CS_ESYNTAX, 0, 0}, {comnb_hextoui8, 8, "FFFFFFFFFFFFFFFF", CS_SUCCEED, ~0ull, 8},
        {comnb_hextoi4, 4, "\x82\x50\x82\x65", CS_SUCCEED, 0x1F, 4, set},
        {comnb_hextoi4, 4, "0x\x82\x50" "f", CS_SUCCEED, 0x1F, 4, set},
        {comnb_hextoi4, 4, "\x82\x5F", CS_ESYNTAX, 0, 0, set},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE("text \"" + c.text + "\"");
        CAST_CONTEXT cc{};
        cc.char_attrib = c.attr;
        std::string text = c.text;
        uint64_t v = 0x5A5A5A5A5A5A5A5Aull;
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), static_cast<CS_INT>(text.size()), 0);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), -5, c.size);
        EXPECT_EQ(code_name(c.f(&cc, &src, &dest)), code_name(c.rc));
        EXPECT_EQ(dest.len, c.len);
        const uint64_t low = c.size == 8 ? v : (v & 0xFFFFFFFFu);
        EXPECT_EQ(low, c.len == -5 ? 0x5A5A5A5Aull : c.value);
        EXPECT_EQ(v >> 32, c.size == 8 ? c.value >> 32 : 0x5A5A5A5Au) << "written past the size";
    }
}

} // namespace
