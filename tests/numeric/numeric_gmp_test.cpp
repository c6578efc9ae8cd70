// The record operations against exact big-integer arithmetic: random operands
// of every precision and scale, with zeros, negative zeros, all-nines and
// small values mixed in.  Result shape, value, sign byte and result code must
// all agree.  The byte-digit kernel division is checked the same way.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "kescomn/numeric.h"
#include "numconv_ref.h"
#include "numeric/exctnume.h"
#include "support/context.h"

namespace {

using namespace kes::test::ref;

bool fits(const Z &v, int prec) { return !exceeds(v, prec); }

struct Operand {
    Z value;
    bool negzero = false;
    int prec = 1, scale = 0;
    CS_NUMERIC rec;

    void store()
    {
        std::memset(&rec, 0xA5, sizeof rec); // bytes past the value have no meaning
        rec.precision = static_cast<CS_BYTE>(prec);
        rec.scale = static_cast<CS_BYTE>(scale);
        ASSERT_TRUE(record_bytes(value, len_of(prec), rec.array));
        rec.array[0] |= negzero ? 1 : 0;
    }
};

class Gen {
public:
    explicit Gen(uint64_t seed) : rng_(seed) {}
    int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }

    void operand(Operand &op)
    {
        op.prec = uniform(0, 9) == 0 ? (uniform(0, 1) ? 77 : 1) : uniform(1, 77);
        op.scale = uniform(0, 9) == 0 ? uniform(0, 77) : uniform(0, op.prec); // some scales above the precision
        op.negzero = false;
        switch (uniform(0, 7)) {
        case 0:
            mpz_set_ui(op.value, 0);
            op.negzero = uniform(0, 1) == 1;
            break;
        case 1: // all nines
            mpz_sub_ui(op.value, ten_to(op.prec), 1);
            break;
        case 2:
            mpz_set(op.value, ten_to(uniform(0, op.prec - 1)));
            break;
        case 3:
            mpz_set_ui(op.value, static_cast<unsigned long>(uniform(1, 300)));
            if (!fits(op.value, op.prec))
                mpz_set_ui(op.value, 1);
            break;
        default: {
            std::string s(static_cast<size_t>(uniform(1, op.prec)), '0');
            for (char &c : s)
                c = static_cast<char>('0' + uniform(0, 9));
            mpz_set_str(op.value, s.c_str(), 10);
        }
        }
        if (uniform(0, 1))
            mpz_neg(op.value, op.value);
        op.store();
    }

private:
    std::mt19937_64 rng_;
};

struct Shape { int prec, scale; };

Shape shape(int intdig, int scale, int prec)
{
    prec = std::clamp(prec, 1, 77);
    return {prec, std::min(std::min(scale, 77), prec - intdig)};
}

// How often each outcome was seen, so that the run proves it reached them.
std::map<std::string, long> g_seen;

std::string describe(const Operand &a, const Operand &b)
{
    std::string out;
    for (const Operand *o : {&a, &b})
        out += o->value.str() + (o->negzero ? "(-0)" : "") + " p" + std::to_string(o->prec) + " s" +
               std::to_string(o->scale) + " ; ";
    return out;
}

// A result record: shape, value and sign byte (zero is positive).
void expect_value(const CS_NUMERIC &got, Shape want, const Z &value, const std::string &what)
{
    ASSERT_EQ(got.precision, want.prec) << what;
    ASSERT_EQ(got.scale, want.scale) << what;
    ASSERT_EQ(mpz_cmp(from_bytes(got.array, len_of(got.precision)), value), 0)
        << what << " got " << kes::test::hex(got.array, len_of(got.precision));
    ASSERT_EQ(got.array[0], sgn(value) < 0 ? 1 : 0) << what;
}

// Calls op on a scrambled result and checks the shape it was given.
CS_RETCODE call(CS_RETCODE (*op)(CS_NUMERIC *, CS_NUMERIC *, CS_NUMERIC *), Operand &a, Operand &b, CS_NUMERIC &r,
                Shape want, const std::string &what)
{
    std::memset(&r, 0x5A, sizeof r);
    const CS_RETCODE rc = op(&a.rec, &b.rec, &r);
    EXPECT_EQ(r.precision, want.prec) << what;
    EXPECT_EQ(r.scale, want.scale) << what;
    return rc;
}

void check_addorsub(Operand &a, Operand &b, bool sub)
{
    const std::string what = describe(a, b) + (sub ? "sub" : "add");
    int p = a.prec, s = a.scale;
    if (a.prec != b.prec || a.scale != b.scale) {
        s = std::max(a.scale, b.scale);
        p = std::min(s + std::max(a.prec - a.scale, b.prec - b.scale), 77);
    }
    const Shape want = shape(p - s, s, p < 77 ? p + 1 : 77);
    // The operands at the common scale; widening may overflow first.
    Z x, y, sum;
    mpz_mul(x, a.value, ten_to(s - a.scale));
    mpz_mul(y, b.value, ten_to(s - b.scale));
    const bool wide_fail = ((a.prec < p || a.scale < s) && !fits(x, p)) || ((b.prec < p || b.scale < s) && !fits(y, p));
    CS_NUMERIC r;
    const CS_RETCODE rc = call(sub ? comn_numsub : comn_numadd, a, b, r, want, what);
    ASSERT_FALSE(::testing::Test::HasFailure());
    if (wide_fail) {
        ++g_seen["addsub widening overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    (sub ? mpz_sub : mpz_add)(sum, x, y);
    if (!fits(sum, want.prec)) {
        ++g_seen["addsub overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        // A carry out of the result's bytes clears them; a sum that fits the
        // bytes but not the precision stays in them.
        Z room;
        mpz_ui_pow_ui(room, 256, static_cast<unsigned long>(len_of(want.prec) - 1));
        if (mpz_cmpabs(sum, room) >= 0) {
            ++g_seen["addsub carry clears"];
            for (int i = 0; i < len_of(want.prec); ++i)
                ASSERT_EQ(r.array[i], 0) << what;
        } else {
            ++g_seen["addsub overflow kept"];
            expect_value(r, want, sum, what);
        }
        return;
    }
    ASSERT_EQ(rc, CS_SUCCEED) << what;
    ++g_seen[sgn(sum) == 0 ? "addsub zero" : "addsub succeeds"];
    expect_value(r, want, sum, what);
}

void check_mul(Operand &a, Operand &b)
{
    const std::string what = describe(a, b) + "mul";
    const int sc = std::min(a.scale + b.scale, 77);
    const int intdig = std::min(a.prec - a.scale + b.prec - b.scale + 1, 77);
    const Shape want = shape(intdig, sc, sc + intdig);
    CS_NUMERIC r;
    const CS_RETCODE rc = call(comn_nummul, a, b, r, want, what);
    ASSERT_FALSE(::testing::Test::HasFailure());
    Z prod, q, rem;
    mpz_mul(prod, a.value, b.value);
    const int shift = want.scale - (a.scale + b.scale);
    // Formed in a 33-byte temporary unless the result is wide enough.
    if (want.prec < a.prec + b.prec && mpz_sizeinbase(prod, 256) > 32 && sgn(prod) != 0) {
        ++g_seen["mul temporary overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    if (shift <= -78) { // no scale change of 78 places
        ++g_seen["mul shift out of range"];
        ASSERT_EQ(rc, CS_ESYNTAX) << what;
        return;
    }
    mpz_tdiv_qr(q, rem, prod, ten_to(-shift));
    if (sgn(rem) != 0 || !fits(q, want.prec)) {
        ++g_seen[sgn(rem) != 0 ? "mul digits lost" : "mul overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    ASSERT_EQ(rc, CS_SUCCEED) << what;
    ++g_seen[shift < 0 ? "mul scaled down" : "mul succeeds"];
    expect_value(r, want, q, what);
}

void check_div(Operand &a, Operand &b)
{
    const std::string what = describe(a, b) + "div";
    const int t = a.prec + b.scale;
    const int sc = t < 6 ? 6 : std::min(t + 1, 77);
    const int intdig = std::min(a.prec - a.scale + b.scale, 77);
    const Shape want = shape(intdig, sc, sc + intdig);
    CS_NUMERIC r;
    const CS_RETCODE rc = call(comn_numdivide, a, b, r, want, what);
    ASSERT_FALSE(::testing::Test::HasFailure());
    const int shift = want.scale - a.scale + b.scale;
    // All temporaries of the division share 132 bytes.
    const int l1 = len_of(a.prec), l2 = len_of(b.prec);
    int used = 0, num = l1, den = l2;
    if (shift > 0)
        used = num = l1 + len_of(shift) + 1;
    else if (shift < 0)
        used = den = l2 + len_of(-shift) + 1;
    if (shift > 77 || shift < -77 || used + num + 1 + den > 132) {
        ++g_seen["div work area overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    if (sgn(b.value) == 0) {
        ++g_seen["div by zero"];
        ASSERT_EQ(rc, CS_EDIVZERO) << what;
        for (int i = 0; i < len_of(want.prec); ++i)
            ASSERT_EQ(r.array[i], 0x5A) << what << ": the quotient is left alone";
        return;
    }
    Z n, d, q;
    mpz_abs(n, a.value);
    mpz_abs(d, b.value);
    mpz_mul(shift > 0 ? n : d, shift > 0 ? n : d, ten_to(std::abs(shift)));
    mpz_tdiv_q(q, n, d);
    if ((sgn(q) != 0 && static_cast<int>(mpz_sizeinbase(q, 256)) + 1 > len_of(want.prec)) || !fits(q, want.prec)) {
        ++g_seen["div overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    if ((a.rec.array[0] != 0) != (b.rec.array[0] != 0))
        mpz_neg(q, q);
    ASSERT_EQ(rc, CS_SUCCEED) << what;
    ++g_seen[shift < 0 ? "div divisor scaled" : shift > 0 ? "div dividend scaled" : "div unscaled"];
    expect_value(r, want, q, what);
}

// Signs first (negative zero equals zero); scales aligned by widening when
// lo.prec + hi.scale <= 77, else by cutting the finer operand.
int model_cmp(const Operand &a, const Operand &b)
{
    const bool n1 = a.rec.array[0] != 0, n2 = b.rec.array[0] != 0;
    if (n1 != n2)
        return sgn(a.value) == 0 && sgn(b.value) == 0 ? 0 : n1 ? -1 : 1;
    Z x, y;
    mpz_abs(x, a.value);
    mpz_abs(y, b.value);
    if (a.scale != b.scale) {
        const bool first_hi = a.scale > b.scale;
        const Operand &hi = first_hi ? a : b, &lo = first_hi ? b : a;
        const Z f = ten_to(hi.scale - lo.scale);
        if (lo.prec + hi.scale <= 77) {
            ++g_seen["cmp widened"];
            mpz_mul(first_hi ? y : x, first_hi ? y : x, f);
        } else {
            ++g_seen["cmp cut"];
            mpz_tdiv_q(first_hi ? x : y, first_hi ? x : y, f);
        }
    }
    const int c = mpz_cmp(x, y);
    return n1 ? (c < 0) - (c > 0) : (c > 0) - (c < 0);
}

TEST(NumericDifferential, AddSubMulDivCmpAgreeWithExactArithmetic)
{
    Gen gen(static_cast<uint64_t>(env_or("KES_NUMERIC_SEED", 20241122)));
    const long n = env_or("KES_NUMERIC_CASES", kSanitized ? 8000 : 100000);
    Operand a, b;
    for (long i = 0; i < n; ++i) {
        gen.operand(a);
        gen.operand(b);
        if (i % 2 == 0) { // half the pairs share their shape, as in a column
            b.prec = a.prec;
            b.scale = a.scale;
            mpz_tdiv_r(b.value, b.value, ten_to(b.prec));
            b.store();
        }
        ASSERT_NO_FATAL_FAILURE(check_addorsub(a, b, false));
        ASSERT_NO_FATAL_FAILURE(check_addorsub(a, b, true));
        ASSERT_NO_FATAL_FAILURE(check_mul(a, b));
        ASSERT_NO_FATAL_FAILURE(check_div(a, b));
        ASSERT_EQ(comn_numcmp(&a.rec, &b.rec), model_cmp(a, b)) << describe(a, b);
    }
    if (n < 50000) // a short run (under the sanitizers) need not reach them all
        return;
    for (const char *outcome :
         {"addsub widening overflows", "addsub carry clears", "addsub overflow kept", "addsub overflows",
          "addsub zero", "addsub succeeds", "mul temporary overflows", "mul shift out of range", "mul digits lost",
          "mul overflows", "mul scaled down", "mul succeeds", "div work area overflows", "div by zero",
          "div overflows", "div divisor scaled", "div dividend scaled", "div unscaled", "cmp widened", "cmp cut"})
        EXPECT_GT(g_seen[outcome], 0) << outcome;
}

// The byte-digit kernel division (not the one the records use) on random
// runs rich in 0x00, 0x80 and 0xff bytes, where trial digits go wrong, with
// leading zero bytes and a quotient area of exactly the room it needs, so
// that the sanitizers see any write outside it.
TEST(NumericDifferential, KernelIntDivAgreesWithExactDivision)
{
    std::mt19937_64 rng(static_cast<uint64_t>(env_or("KES_NUMERIC_SEED", 20241122)));
    auto bytes = [&](size_t n) {
        std::vector<CS_BYTE> v(n + 1, 0); // sign byte first
        const CS_BYTE picks[] = {0x00, 0x80, 0xff, 0x01, 0x7f};
        for (size_t i = 1; i <= n; ++i)
            v[i] = rng() % 3 ? picks[rng() % 5] : static_cast<CS_BYTE>(rng());
        return v;
    };
    auto view = [](std::vector<CS_BYTE> &v) {
        __CONSTANT c{};
        c.value = v.data();
        c.len = c.maxlen = static_cast<CS_INT>(v.size());
        return c;
    };
    auto magnitude = [](const CS_BYTE *p, int len) { // the bytes after the sign byte
        Z z;
        mpz_import(z, static_cast<size_t>(std::max(len - 1, 0)), 1, 1, 1, 0, p + 1);
        return z;
    };
    for (long i = 0, n = kSanitized ? 5000 : 50000; i < n; ++i) {
        std::vector<CS_BYTE> ub = bytes(1 + rng() % 24), vb = bytes(1 + rng() % 12);
        const Z u = magnitude(ub.data(), static_cast<int>(ub.size()));
        const Z v = magnitude(vb.data(), static_cast<int>(vb.size()));
        const int sig = sgn(u) == 0 ? 0 : static_cast<int>(mpz_sizeinbase(u, 256));
        std::vector<CS_BYTE> qb(static_cast<size_t>(sig + 2 + (rng() % 2 ? 0 : 3)), 0xEE), rb(1);
        __CONSTANT a = view(ub), b = view(vb), qc = view(qb), rc = view(rb);
        const int st = com__exctnume_intdiv(&a, &b, &qc, &rc);
        const std::string what = kes::test::hex(ub.data(), ub.size()) + " / " + kes::test::hex(vb.data(), vb.size());
        if (sgn(v) == 0) {
            ASSERT_EQ(st, 3) << what;
            continue;
        }
        ASSERT_EQ(st, 0) << what;
        Z gq, gr;
        mpz_tdiv_qr(gq, gr, u, v);
        ASSERT_TRUE(qc.len == 0 || qc.value[0] == 0) << what;
        ASSERT_EQ(mpz_cmp(magnitude(qc.value, qc.len), gq), 0) << what;
        ASSERT_EQ(mpz_cmp(magnitude(rc.value, rc.len), gr), 0) << what;
        ASSERT_EQ(rc.len == 0, sgn(gr) == 0) << what << ": an exact division has an empty remainder";
    }
}

} // namespace
