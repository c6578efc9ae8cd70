// The server layer's hexadecimal text of integers: digits written backwards
// into the whole capacity, and read back with the digit count tested before
// the value.
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "support/context.h"

namespace {

using kes::test::code_name;

struct ToHexCase {
    int64_t value;
    CS_INT maxlen;
    CS_RETCODE rc;
    std::string_view text; // the whole capacity when CS_SUCCEED
};

template <class T> void to_hex_table(CS_RETCODE (*f)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *),
                                     std::initializer_list<ToHexCase> cases)
{
    CAST_CONTEXT cc{};
    for (const ToHexCase &c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " into " + std::to_string(c.maxlen));
        T v = static_cast<T>(c.value);
        char out[24];
        std::memset(out, '#', sizeof out);
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), sizeof v, sizeof v);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(out), -5, c.maxlen);
        EXPECT_EQ(code_name(f(&cc, &src, &dest)), code_name(c.rc));
        if (c.rc == CS_SUCCEED) {
            EXPECT_EQ(std::string_view(out, static_cast<size_t>(c.maxlen)), c.text);
        }
        EXPECT_EQ(out[c.maxlen > 0 ? c.maxlen : 0], '#') << "written past the capacity";
        EXPECT_EQ(dest.len, -5);
    }
}

TEST(BinHex, Int32ToHexFillsTheCapacity)
{
    using namespace std::string_view_literals;
    to_hex_table<CS_INT>(comnb_i4tohex, {
                                            {255, 9, CS_SUCCEED, "000000FF\0"sv},
                                            {255, 3, CS_SUCCEED, "FF\0"sv},
                                            {255, 2, CS_EOVERFLOW, ""},
                                            {0, 2, CS_SUCCEED, "0\0"sv},
                                            {-1, 9, CS_SUCCEED, "FFFFFFFF\0"sv},
                                            {-1, 12, CS_SUCCEED, "000FFFFFFFF\0"sv},
                                            {-1, 4, CS_EOVERFLOW, ""},
                                            {0x1234ABCD, 9, CS_SUCCEED, "1234ABCD\0"sv},
                                            {5, 1, CS_ESYNTAX, ""},
                                            {5, 0, CS_ESYNTAX, ""},
                                        });
    to_hex_table<CS_UINT>(comnb_ui4tohex, {{0x80000000u, 9, CS_SUCCEED, "80000000\0"sv}});
    to_hex_table<CS_BIGINT>(comnb_i8tohex, {
                                               {INT64_MIN, 17, CS_SUCCEED, "8000000000000000\0"sv},
                                               {-1, 16, CS_EOVERFLOW, ""},
                                               {0xABC, 5, CS_SUCCEED, "0ABC\0"sv},
                                           });
    to_hex_table<CS_UBIGINT>(comnb_ui8tohex, {{-1, 17, CS_SUCCEED, "FFFFFFFFFFFFFFFF\0"sv}});
}

TEST(BinHex, NullDestinationValueIsASyntaxError)
{
    CAST_CONTEXT cc{};
    CS_INT v = 1;
    __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), 4, 4);
    __CONSTANT dest = kes::test::constant(nullptr, 0, 9);
    EXPECT_EQ(comnb_i4tohex(&cc, &src, &dest), CS_ESYNTAX);
}

struct FromHexCase {
    std::string text;
    CS_RETCODE rc;
    uint64_t value;
    CS_INT len;
};

template <class T> void from_hex_table(CS_RETCODE (*f)(CAST_CONTEXT *, __CONSTANT *, __CONSTANT *),
                                       std::initializer_list<FromHexCase> cases, CS_ATTRIB *attr = nullptr)
{
    CAST_CONTEXT cc{};
    cc.char_attrib = attr;
    for (const FromHexCase &c : cases) {
        SCOPED_TRACE("text \"" + c.text + "\"");
        std::string text = c.text;
        T v = static_cast<T>(0x5A5A5A5A5A5A5A5Aull);
        __CONSTANT src = kes::test::constant(reinterpret_cast<CS_BYTE *>(text.data()), static_cast<CS_INT>(text.size()), 0);
        __CONSTANT dest = kes::test::constant(reinterpret_cast<CS_BYTE *>(&v), -5, sizeof v);
        EXPECT_EQ(code_name(f(&cc, &src, &dest)), code_name(c.rc));
        if (c.rc != CS_EOVERFLOW || c.len != -5) {
            EXPECT_EQ(static_cast<uint64_t>(static_cast<std::make_unsigned_t<T>>(v)), c.value);
        }
        EXPECT_EQ(dest.len, c.len);
    }
}

TEST(BinHex, HexToInt32CountsDigitsBeforeTheValue)
{
    from_hex_table<CS_INT>(comnb_hextoi4, {
                                              {"0x0000000FF", CS_SUCCEED, 0xFF, 4},
                                              {"123456789", CS_TRUNCATED, 0x12345678, 4},
                                              {"12345678", CS_SUCCEED, 0x12345678, 4},
                                              {"ffffffff", CS_SUCCEED, 0xFFFFFFFF, 4},
                                              {"FFFFFFFFF", CS_TRUNCATED, 0xFFFFFFFF, 4},
                                              {"000000000000000000001", CS_SUCCEED, 1, 4},
                                              {"0X", CS_SUCCEED, 0, 4},
                                              {"", CS_SUCCEED, 0, 4},
                                              {"xyz", CS_ESYNTAX, 0, 0},
                                              {"12 ", CS_ESYNTAX, 0, 0},
                                              {" 12", CS_ESYNTAX, 0, 0},
                                              {"0x0x1", CS_ESYNTAX, 0, 0},
                                              // The cut comes before the bad character is seen.
                                              {"123456789z", CS_TRUNCATED, 0x12345678, 4},
                                              {"1234567z9", CS_ESYNTAX, 0, 0},
                                              // A NUL ends the text.
                                              {std::string("1F\0zz", 5), CS_SUCCEED, 0x1F, 4},
                                              {std::string(255, '0') , CS_SUCCEED, 0, 4},
                                              {std::string(256, '0'), CS_EOVERFLOW, 0x5A5A5A5A, -5},
                                          });
    from_hex_table<CS_UINT>(comnb_hextoui4, {{"0xdeadBEEF", CS_SUCCEED, 0xDEADBEEF, 4}});
}

TEST(BinHex, HexToInt64KeepsSixteenDigits)
{
    from_hex_table<CS_BIGINT>(comnb_hextoi8, {
                                                 {"0x8000000000000000", CS_SUCCEED, 0x8000000000000000ull, 8},
                                                 {"123456789abcdef01", CS_TRUNCATED, 0x123456789ABCDEF0ull, 8},
                                                 {"0001", CS_SUCCEED, 1, 8},
                                                 {"g", CS_ESYNTAX, 0, 0},
                                             });
    from_hex_table<CS_UBIGINT>(comnb_hextoui8, {{"FFFFFFFFFFFFFFFF", CS_SUCCEED, ~0ull, 8}});
}

TEST(BinHex, HexTextIsNormalisedThroughTheCharacterSet)
{
    // A double-byte set whose full-width letters and digits (0xA3 0xC1 ...)
    // stand for their ASCII twins.
    CS_BYTE width[256];
    CS_NORM_MAP norm[2]{};
    for (int b = 0; b < 256; b++) {
        width[b] = b >= 0x81 && b <= 0xFE ? 2 : 1;
        norm[0].norm[b] = b < 0x80 ? static_cast<CS_BYTE>(b) : 0;
    }
    norm[0].norm[0xA3] = 1;
    for (int c = 0x20; c < 0x7F; c++)
        norm[1].norm[0x80 + c] = static_cast<CS_BYTE>(c);
    CS_ATTRIB attr{};
    attr.cs_maxcharlen = 2;
    attr.cs_nnorm = 2;
    attr.cs_width_map = width;
    attr.cs_norm_map = norm;
    from_hex_table<CS_INT>(comnb_hextoi4,
                           {
                               {"\xA3\xB1\xA3\xC6", CS_SUCCEED, 0x1F, 4},
                               {"0x\xA3\xB1" "f", CS_SUCCEED, 0x1F, 4},
                               {"\xB0\xA1", CS_ESYNTAX, 0, 0},
                           },
                           &attr);
}

} // namespace
