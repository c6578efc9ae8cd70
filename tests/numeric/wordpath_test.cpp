// The word path against the byte kernel alone: for random records (valid,
// all nines, powers of ten, magnitudes past their precision, odd sign bytes,
// garbage past the value, a result that is an operand) both must return the
// same code and leave the same 35 bytes in the result.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>

#include "kescomn.h"
#include "numeric/nume_tables.h"
#include "numeric/records.h"
#include "numeric/shapes.h"
#include "numeric/wordpath.h"

namespace {

using kes::numeric::record_addorsub;
using kes::numeric::record_divide;
using kes::numeric::record_mul;

class Records {
public:
    explicit Records(uint64_t seed) : rng_(seed) {}

    CS_NUMERIC next()
    {
        CS_NUMERIC n;
        for (auto &b : n.array) // what lies past the value must not matter
            b = static_cast<CS_BYTE>(rng_());
        const int p = pick(10) == 0 ? 39 + pick(39) : 1 + pick(38);
        n.precision = static_cast<CS_BYTE>(p);
        n.scale = static_cast<CS_BYTE>(pick(20) == 0 ? pick(78) : pick(p + 1));
        const int len = Com__Nume_Prec_To_Len[p];
        std::memset(n.array + 1, 0, static_cast<size_t>(len - 1));
        switch (pick(8)) {
        case 0: break; // zero
        case 1: set_digits(n, p, true); break;
        case 2: // 10^p itself, one past the precision
            std::memcpy(n.array + 1 + len - Com__Nume_Byte_Power_Array[p][0],
                        &Com__Nume_Byte_Power_Array[p][2], Com__Nume_Byte_Power_Array[p][0] - 1u);
            break;
        case 3: // any bytes at all
            for (int i = 1; i < len; ++i)
                n.array[i] = static_cast<CS_BYTE>(rng_());
            break;
        case 4: set_digits(n, 1 + pick(3), false); break; // a small value: one-word divisors
        default: set_digits(n, 1 + pick(p), false); break;
        }
        static constexpr CS_BYTE kSigns[] = {0, 0, 0, 1, 1, 2, 255};
        n.array[0] = kSigns[pick(sizeof kSigns)];
        return n;
    }

    int pick(int n) { return static_cast<int>(rng_() % static_cast<uint64_t>(n)); }

private:
    // A value of `digits` random decimal digits, or all nines.
    void set_digits(CS_NUMERIC &n, int digits, bool nines)
    {
        const int len = Com__Nume_Prec_To_Len[n.precision];
        for (int d = 0; d < digits; ++d) {
            unsigned carry = nines ? 9u : static_cast<unsigned>(pick(10));
            for (int i = len - 1; i >= 1; --i) {
                const unsigned v = n.array[i] * 10u + carry;
                n.array[i] = static_cast<CS_BYTE>(v);
                carry = v >> 8;
            }
        }
    }

    std::mt19937_64 rng_;
};

enum class Op { add, sub, mul, div };

CS_RETCODE run(Op op, CS_NUMERIC *a, CS_NUMERIC *b, CS_NUMERIC *r, bool words)
{
    switch (op) {
    case Op::add: return record_addorsub(a, b, r, 0, words);
    case Op::sub: return record_addorsub(a, b, r, 1, words);
    case Op::mul: return record_mul(a, b, r, words);
    case Op::div: return record_divide(a, b, r, words);
    }
    return CS_FAIL;
}

class WordPath : public ::testing::TestWithParam<Op> {};

TEST_P(WordPath, SameCodeAndBytesAsTheByteKernel)
{
    Records gen(0x5eed0000u + static_cast<unsigned>(GetParam()));
    int successes = 0;
    for (int i = 0; i < 300000; ++i) {
        CS_NUMERIC a = gen.next(), b = gen.next();
        if (gen.pick(3) == 0) { // same shape, the common column case
            b.precision = a.precision;
            b.scale = a.scale;
        }
        CS_NUMERIC fast[3] = {a, b, gen.next()}, slow[3] = {a, b, fast[2]};
        const int target = gen.pick(4); // 0 or 1: the result is that operand
        auto call = [&](CS_NUMERIC *v, bool words) {
            return run(GetParam(), &v[0], &v[1], &v[target < 2 ? target : 2], words);
        };
        const CS_RETCODE rf = call(fast, true);
        const CS_RETCODE rs = call(slow, false);
        successes += rs == CS_SUCCEED;
        ASSERT_EQ(rf, rs) << "case " << i;
        ASSERT_EQ(0, std::memcmp(fast, slow, sizeof fast)) << "case " << i;
    }
    // The generator must reach successes and failures alike.
    EXPECT_GT(successes, 30000);
    EXPECT_LT(successes, 280000);
}

// The word path writes a product's shape in its short form.
TEST(WordPathShapes, ProductOfWordShapesKeepsEveryDigit)
{
    using kes::numeric::words::kMaxWordPrec;
    for (int p1 = 1; p1 <= kMaxWordPrec; ++p1)
        for (int p2 = 1; p2 <= kMaxWordPrec; ++p2)
            for (int s1 = 0; s1 <= p1; ++s1)
                for (int s2 = 0; s2 <= p2; ++s2) {
                    const kes::numeric::Shape out = kes::numeric::product_shape(p1, s1, p2, s2);
                    ASSERT_EQ(out.prec, p1 + p2 + 1);
                    ASSERT_EQ(out.scale, s1 + s2);
                }
}

std::string op_name(const ::testing::TestParamInfo<Op> &info)
{
    static const char *const names[] = {"add", "sub", "mul", "div"};
    return names[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Ops, WordPath, ::testing::Values(Op::add, Op::sub, Op::mul, Op::div), op_name);

} // namespace
