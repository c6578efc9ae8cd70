// The list manager's key hash: known values at every length class, the sign
// smear of high bytes, the two derived hashes, and a randomised comparison
// with the independent statement in lm_reference.h.
#include <random>
#include <string>

#include "runtime/lm_impl.h"
#include "support/context.h"
#include "lm_reference.h"

namespace {

using namespace std::string_literals;

CS_UINT fold(const std::string &key)
{
    CS_UINT v = 0xdeadbeef;
    EXPECT_EQ(lm___api_key_to_uint(const_cast<CS_CHAR *>(key.data()), CS_INT(key.size()), &v), CS_SUCCEED);
    return v;
}

struct FoldCase {
    std::string key;
    CS_UINT value;
    const char *why;
};

TEST(LmHash, KnownValues)
{
    const FoldCase cases[] = {
        {""s, 0x0, "empty key folds to 0"},
        {"A"s, 0x415a5a5a, "one byte, three pad bytes"},
        {"AB"s, 0x41425a5a, "two bytes"},
        {"ABC"s, 0x4142435a, "three bytes"},
        {"ABCD"s, 0x41424344, "exactly one word: first alone"},
        {"ABCDE"s, 0xb3ee132e, "word then padded tail"},
        {"ABCDEF"s, 0xb3da132e, "6 bytes"},
        {"ABCDEFG"s, 0xb3da002e, "7 bytes"},
        {"ABCDEFGH"s, 0xb3da001c, "one pair of words"},
        {"ABCDEFGHI"s, 0x47dc5e66, "pair then tail"},
        {"ABCDEFGHIJKL"s, 0x47cc4f58, "pair then a lone first"},
        {"ABCDEFGHIJKLM"s, 0xade1d212, "pair, first and tail"},
        {"\0\0\0\0"s, 0x0, "a zero word while first is 0 counts for nothing"},
        {"\0\0\0\0ABCD"s, 0x41424344, "so the zero word vanishes"},
        {"\0\0\0\0A"s, 0x415a5a5a, "also before a tail"},
        {"\x80"s, 0x805a5a5a, "high byte smears into the empty word only"},
        {"\xff"s, 0xff5a5a5a, "0xff likewise"},
        {"\x80\x01"s, 0x80015a5a, "low byte after a high one"},
        {"\x01\x80"s, 0xff805a5a, "high byte after a low one smears over it"},
        {"comnlib list context"s, 0x4f12a4dc, "a realistic name"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(fold(c.key), c.value) << kes::test::hex(c.key.data(), c.key.size());
    }
}

TEST(LmHash, HighByteMakesByteOrdersCollide)
{
    // The last byte of the group smears over the three before it.
    EXPECT_EQ(fold("\x01\x02\x03\x80"s), 0xffffff80u);
    EXPECT_EQ(fold("\x01\x02\x03\x80"s), fold("\x02\x01\x03\x80"s));
    EXPECT_EQ(fold("xy\xf0"s), fold("yx\xf0"s));
    EXPECT_NE(fold("xy"s), fold("yx"s));
}

TEST(LmHash, DerivedHashesAndRanges)
{
    struct Case {
        std::string key;
        CS_INT range;
        CS_RETCODE rc;
        CS_UINT home, second;
    };
    const Case cases[] = {
        {"ABCD"s, 10, CS_SUCCEED, 0x41424344u % 10, 0x41424344u * 7 % 9 + 1},
        {"comnlib list context"s, 10, CS_SUCCEED, 6, 9},
        {""s, 2, CS_SUCCEED, 0, 1},
        {"ABCDE"s, 0x7fffffff, CS_SUCCEED, 0xb3ee132eu % 0x7fffffffu, 0xb3ee132eu * 7 % 0x7ffffffeu + 1},
        {"ABCD"s, 0, CS_FAIL, 0, 0},
        {"ABCD"s, -5, CS_FAIL, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.range);
        CS_UINT h = 77, h2 = 77;
        auto *k = const_cast<CS_CHAR *>(c.key.data());
        EXPECT_EQ(lm__api_key_to_hash(k, CS_INT(c.key.size()), c.range, &h), c.rc);
        EXPECT_EQ(lm__api_key_to_hash2(k, CS_INT(c.key.size()), c.range, &h2), c.rc);
        EXPECT_EQ(h, c.home);
        EXPECT_EQ(h2, c.second);
    }
    // Range 1 leaves the second hash nothing to divide by.
    CS_UINT h = 0;
    EXPECT_EQ(lm__api_key_to_hash(const_cast<CS_CHAR *>("k"), 1, 1, &h), CS_SUCCEED);
    EXPECT_EQ(h, 0u);
}

TEST(LmHashDeathTest, SecondHashNeedsTwoSlots)
{
    CS_UINT h;
    EXPECT_BOMB(lm__api_key_to_hash2(const_cast<CS_CHAR *>("k"), 1, 1, &h));
    EXPECT_BOMB(lm___api_key_to_uint(const_cast<CS_CHAR *>("k"), -1, &h));
}

TEST(LmHash, RandomKeysAgreeWithReference)
{
    std::mt19937 rng(20261122);
    std::uniform_int_distribution<int> len(0, 40), byte(0, 255), range(1, 5000);
    for (int i = 0; i < 20000; i++) {
        std::string key(size_t(len(rng)), '\0');
        // Mostly zero and high bytes: they exercise the empty-word and smear rules.
        for (auto &c : key) {
            int pick = byte(rng);
            c = char(pick < 40 ? 0 : pick < 100 ? 0x80 | (pick & 0x7f) : pick);
        }
        ASSERT_EQ(fold(key), lmref::fold(key)) << kes::test::hex(key.data(), key.size());
        CS_INT r = range(rng) + 1;
        CS_UINT h1, h2;
        lm__api_key_to_hash(key.data(), CS_INT(key.size()), r, &h1);
        lm__api_key_to_hash2(key.data(), CS_INT(key.size()), r, &h2);
        ASSERT_EQ(h1, lmref::home(key, r));
        ASSERT_EQ(h2, lmref::second(key, r));
    }
}

} // namespace
