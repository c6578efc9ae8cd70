// Differential test of the record operations against exact big-integer
// arithmetic: random operands of every precision and scale, with zeros,
// negative zeros, all-nines and small values mixed in.  The expected shape
// of each result is derived independently from the rules for result
// precision and scale; value, sign byte and result code must all agree.
#include <gmp.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <map>
#include <string>

#include "kescomn/numeric.h"
#include "support/context.h"

namespace {

// GMP values with automatic clean-up.
struct Z {
    mpz_t v;
    Z() { mpz_init(v); }
    ~Z() { mpz_clear(v); }
    Z(const Z &) = delete;
    Z &operator=(const Z &) = delete;
    operator mpz_ptr() { return v; }
    operator mpz_srcptr() const { return v; }
};

// Bytes of a value of precision p, sign byte included, by GMP: the byte
// size of 10^p - 1 plus one.
int len_of(int p)
{
    mpz_t v;
    mpz_init(v);
    mpz_ui_pow_ui(v, 10, static_cast<unsigned long>(p));
    mpz_sub_ui(v, v, 1);
    const int n = mpz_sgn(v) == 0 ? 1 : static_cast<int>(mpz_sizeinbase(v, 256));
    mpz_clear(v);
    return n + 1;
}


bool sanitized()
{
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(undefined_behavior_sanitizer)
    return true;
#endif
#endif
    return false;
}

long env_or(const char *name, long dflt)
{
    const char *s = std::getenv(name);
    return s ? std::strtol(s, nullptr, 10) : dflt;
}

// ---- conversion between records and GMP --------------------------------------

int sgn(mpz_srcptr x) { return mpz_sgn(x); }

void to_record(mpz_srcptr value, bool negzero, int prec, int scale, CS_NUMERIC &out)
{
    std::memset(&out, 0xA5, sizeof out); // bytes past the value have no meaning
    out.precision = static_cast<CS_BYTE>(prec);
    out.scale = static_cast<CS_BYTE>(scale);
    const int len = len_of(prec);
    std::memset(out.array, 0, static_cast<size_t>(len));
    size_t count = 0;
    CS_BYTE buf[64];
    mpz_export(buf, &count, 1, 1, 1, 0, value);
    ASSERT_LE(count, static_cast<size_t>(len - 1));
    std::memcpy(out.array + len - count, buf, count);
    out.array[0] = (sgn(value) < 0 || negzero) ? 1 : 0;
}

// The signed value of a record.
void from_record(const CS_NUMERIC &n, mpz_ptr out)
{
    const int len = len_of(n.precision);
    mpz_import(out, static_cast<size_t>(len - 1), 1, 1, 1, 0, n.array + 1);
    if (n.array[0] != 0)
        mpz_neg(out, out);
}

void pow10(mpz_ptr out, int e) { mpz_ui_pow_ui(out, 10, static_cast<unsigned long>(e)); }

// ---- random operands ---------------------------------------------------------

struct Operand {
    Z value;
    bool negzero = false;
    int prec = 1;
    int scale = 0;
    CS_NUMERIC rec;
};

class Gen {
public:
    explicit Gen(uint64_t seed) : rng_(seed) {}

    int uniform(int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng_); }

    void operand(Operand &op)
    {
        op.prec = uniform(0, 9) == 0 ? (uniform(0, 1) ? 77 : 1) : uniform(1, 77);
        const int kind = uniform(0, 9);
        // Mostly scales up to the precision; some above it.
        op.scale = kind == 0 ? uniform(0, 77) : uniform(0, op.prec);
        op.negzero = false;
        switch (uniform(0, 7)) {
        case 0:
            mpz_set_ui(op.value, 0);
            op.negzero = uniform(0, 1) == 1;
            break;
        case 1: // all nines: 10^p - 1
            pow10(op.value, op.prec);
            mpz_sub_ui(op.value, op.value, 1);
            break;
        case 2: // a power of ten
            pow10(op.value, uniform(0, op.prec - 1));
            break;
        case 3:
            mpz_set_ui(op.value, static_cast<unsigned long>(uniform(1, 300)));
            if (mpz_sizeinbase(op.value, 10) > static_cast<size_t>(op.prec))
                mpz_set_ui(op.value, 1);
            break;
        default: {
            const int digits = uniform(1, op.prec);
            std::string s(static_cast<size_t>(digits), '0');
            for (char &c : s)
                c = static_cast<char>('0' + uniform(0, 9));
            mpz_set_str(op.value, s.c_str(), 10);
        }
        }
        if (uniform(0, 1))
            mpz_neg(op.value, op.value);
        to_record(op.value, op.negzero, op.prec, op.scale, op.rec);
    }

private:
    std::mt19937_64 rng_;
};

// ---- the expected shapes -----------------------------------------------------

struct Shape {
    int prec, scale;
};

Shape shape(int intdig, int scale, int prec)
{
    prec = std::clamp(prec, 1, 77);
    scale = std::min(scale, 77);
    if (scale > prec - intdig)
        scale = prec - intdig;
    return {prec, scale};
}

bool fits(mpz_srcptr magnitude, int prec)
{
    Z limit;
    pow10(limit, prec);
    return mpz_cmpabs(magnitude, limit) < 0;
}

// ---- the checks --------------------------------------------------------------

// How often each outcome was seen, so that the run proves it reached them.
std::map<std::string, long> g_seen;

uint64_t seed() { return static_cast<uint64_t>(env_or("KES_NUMERIC_SEED", 20241122)); }
long cases() { return env_or("KES_NUMERIC_CASES", sanitized() ? 8000 : 100000); }

std::string describe(const Operand &a, const Operand &b)
{
    char *sa = mpz_get_str(nullptr, 10, a.value);
    char *sb = mpz_get_str(nullptr, 10, b.value);
    std::string out = std::string(sa) + (a.negzero ? "(-0)" : "") + " p" + std::to_string(a.prec) + " s" +
                      std::to_string(a.scale) + " , " + sb + (b.negzero ? "(-0)" : "") + " p" +
                      std::to_string(b.prec) + " s" + std::to_string(b.scale);
    free(sa);
    free(sb);
    return out;
}

// Compares a successful result: shape, value and sign byte (zero positive).
void expect_value(const CS_NUMERIC &got, Shape want, mpz_srcptr value, const std::string &what)
{
    ASSERT_EQ(got.precision, want.prec) << what;
    ASSERT_EQ(got.scale, want.scale) << what;
    Z v;
    from_record(got, v);
    ASSERT_EQ(mpz_cmp(v, value), 0) << what << " got " << kes::test::hex(got.array, len_of(got.precision));
    ASSERT_EQ(got.array[0], sgn(value) < 0 ? 1 : 0) << what;
}

void check_addorsub(Operand &a, Operand &b, int opn)
{
    const std::string what = describe(a, b) + (opn ? " sub" : " add");
    int p = a.prec, s = a.scale;
    if (a.prec != b.prec || a.scale != b.scale) {
        const int intdig = std::max(a.prec - a.scale, b.prec - b.scale);
        s = std::max(a.scale, b.scale);
        p = std::min(s + intdig, 77);
    }
    const Shape want = shape(p - s, s, s + (p - s) < 77 ? p + 1 : 77);

    // The exact operands at the common scale; widening may overflow first.
    Z x, y, f;
    pow10(f, s - a.scale);
    mpz_mul(x, a.value, f);
    pow10(f, s - b.scale);
    mpz_mul(y, b.value, f);
    const bool wide_fail = ((a.prec < p || a.scale < s) && !fits(x, p)) || ((b.prec < p || b.scale < s) && !fits(y, p));

    CS_NUMERIC r;
    std::memset(&r, 0x5A, sizeof r);
    const CS_RETCODE rc = opn ? comn_numsub(&a.rec, &b.rec, &r) : comn_numadd(&a.rec, &b.rec, &r);
    ASSERT_EQ(r.precision, want.prec) << what;
    ASSERT_EQ(r.scale, want.scale) << what;
    if (wide_fail) {
        ++g_seen["addsub widening overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    Z sum;
    if (opn)
        mpz_sub(sum, x, y);
    else
        mpz_add(sum, x, y);
    if (!fits(sum, want.prec)) {
        ++g_seen["addsub overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        // A carry out of the result's bytes clears them.
        Z room;
        mpz_ui_pow_ui(room, 256, static_cast<unsigned long>(len_of(want.prec) - 1));
        if (mpz_cmpabs(sum, room) >= 0) {
            ++g_seen["addsub carry clears"];
            for (int i = 0; i < len_of(want.prec); ++i)
                ASSERT_EQ(r.array[i], 0) << what;
        }
        return;
    }
    ASSERT_EQ(rc, CS_SUCCEED) << what;
    ++g_seen[sgn(sum) == 0 ? "addsub zero" : "addsub succeeds"];
    expect_value(r, want, sum, what);
}

void check_mul(Operand &a, Operand &b)
{
    const std::string what = describe(a, b) + " mul";
    const int intdig = std::min(a.prec - a.scale + b.prec - b.scale + 1, 77);
    const int sc = std::min(a.scale + b.scale, 77);
    const Shape want = shape(intdig, sc, sc + intdig);
    CS_NUMERIC r;
    std::memset(&r, 0x5A, sizeof r);
    const CS_RETCODE rc = comn_nummul(&a.rec, &b.rec, &r);
    ASSERT_EQ(r.precision, want.prec) << what;
    ASSERT_EQ(r.scale, want.scale) << what;

    Z prod;
    mpz_mul(prod, a.value, b.value);
    const int shift = want.scale - (a.scale + b.scale);
    // Formed in a 33-byte temporary unless the result is wide enough.
    if (want.prec < a.prec + b.prec && mpz_sizeinbase(prod, 256) > 32 && sgn(prod) != 0) {
        ++g_seen["mul temporary overflows"];
        ASSERT_EQ(rc, CS_EOVERFLOW) << what;
        return;
    }
    // The scale change cannot shift by 78 places or more.
    if (shift <= -78) {
        ++g_seen["mul shift out of range"];
        ASSERT_EQ(rc, CS_ESYNTAX) << what;
        return;
    }
    Z q, rem, f;
    pow10(f, -shift);
    mpz_tdiv_qr(q, rem, prod, f);
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
    const std::string what = describe(a, b) + " div";
    const int intdig = std::min(a.prec - a.scale + b.scale, 77);
    const int t = a.prec + b.scale;
    const int sc = t < 6 ? 6 : std::min(t + 1, 77);
    const Shape want = shape(intdig, sc, sc + intdig);
    CS_NUMERIC r;
    std::memset(&r, 0x5A, sizeof r);
    const CS_NUMERIC before = r;
    const CS_RETCODE rc = comn_numdivide(&a.rec, &b.rec, &r);
    ASSERT_EQ(r.precision, want.prec) << what;
    ASSERT_EQ(r.scale, want.scale) << what;

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
        ASSERT_EQ(std::memcmp(r.array, before.array, sizeof r.array), 0) << what;
        return;
    }
    Z n, d, f, q;
    mpz_abs(n, a.value);
    mpz_abs(d, b.value);
    pow10(f, shift > 0 ? shift : -shift);
    if (shift > 0)
        mpz_mul(n, n, f);
    else
        mpz_mul(d, d, f);
    mpz_tdiv_q(q, n, d);
    if ((sgn(q) != 0 && static_cast<int>(mpz_sizeinbase(q, 256)) + 1 > len_of(want.prec)) ||
        !fits(q, want.prec)) {
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

// Signs honoured; scales aligned by widening when lo.prec + hi.scale <= 77,
// else by cutting the finer operand.
int model_cmp(const Operand &a, const Operand &b)
{
    const bool n1 = a.rec.array[0] != 0, n2 = b.rec.array[0] != 0;
    const bool z1 = sgn(a.value) == 0, z2 = sgn(b.value) == 0;
    if (n1 != n2) {
        if ((n1 && !z1) || (n2 && !z2))
            return n1 ? -1 : 1;
        if (z1 && z2)
            return 0;
        return n1 ? -1 : 1;
    }
    Z x, y, f;
    mpz_abs(x, a.value);
    mpz_abs(y, b.value);
    if (a.scale != b.scale) {
        const bool first_hi = a.scale > b.scale;
        const Operand &hi = first_hi ? a : b;
        const Operand &lo = first_hi ? b : a;
        pow10(f, hi.scale - lo.scale);
        mpz_ptr lov = first_hi ? y : x;
        mpz_ptr hiv = first_hi ? x : y;
        if (lo.prec + hi.scale <= 77) {
            ++g_seen["cmp widened"];
            mpz_mul(lov, lov, f);
        } else {
            mpz_tdiv_q(hiv, hiv, f);
            ++g_seen["cmp cut"];
        }
    }
    const int c = mpz_cmp(x, y);
    const int r = (c > 0) - (c < 0);
    return n1 ? -r : r;
}

TEST(NumericDifferential, AddSubMulDivCmpAgreeWithExactArithmetic)
{
    Gen gen(seed());
    const long n = cases();
    Operand a, b;
    for (long i = 0; i < n; ++i) {
        gen.operand(a);
        gen.operand(b);
        // Half the pairs share their shape, the common case of a column.
        if (i % 2 == 0) {
            b.prec = a.prec;
            b.scale = a.scale;
            Z lim;
            pow10(lim, b.prec);
            mpz_tdiv_r(b.value, b.value, lim);
            to_record(b.value, b.negzero, b.prec, b.scale, b.rec);
        }
        ASSERT_NO_FATAL_FAILURE(check_addorsub(a, b, 0));
        ASSERT_NO_FATAL_FAILURE(check_addorsub(a, b, 1));
        ASSERT_NO_FATAL_FAILURE(check_mul(a, b));
        ASSERT_NO_FATAL_FAILURE(check_div(a, b));
        ASSERT_EQ(comn_numcmp(&a.rec, &b.rec), model_cmp(a, b)) << describe(a, b);
    }
    // A short run (under the sanitizers) need not reach the rare outcomes.
    if (n < 50000)
        return;
    for (const char *outcome :
         {"addsub widening overflows", "addsub carry clears", "addsub overflows", "addsub zero", "addsub succeeds",
          "mul temporary overflows", "mul shift out of range", "mul digits lost", "mul overflows",
          "mul scaled down", "mul succeeds", "div work area overflows", "div by zero", "div overflows",
          "div divisor scaled", "div dividend scaled", "div unscaled", "cmp widened", "cmp cut"})
        EXPECT_GT(g_seen[outcome], 0) << outcome;
}

} // namespace
