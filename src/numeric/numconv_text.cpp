// Decimal text into and out of exact numerics: the reader with its exponent
// rules and tolerant rounding, and the writer of the fixed "-int.frac" form.
// Both work on 64-bit (reader) or 32-bit (writer) limbs rather than byte by
// byte; the results are those of the byte-wise multiply-by-ten and
// divide-by-ten loops.
#include <cstdint>
#include <cstring>

#include "conv/char_scan_text.h"
#include "errors/assert.h"
#include "numeric/exctnume.h"
#include "numeric/numconv.h"

using namespace kes::numeric;

namespace {

// A magnitude of up to 320 bits built digit by digit: digits gather in a
// 64-bit chunk and are folded into the limbs nineteen at a time.
class DigitAccumulator {
public:
    void push(unsigned digit)
    {
        chunk_ = chunk_ * 10 + digit;
        if (++pending_ == 19)
            flush();
    }
    // Eight digits at once, worth value (below 10^8).
    void push8(uint32_t value)
    {
        if (pending_ > 11)
            flush();
        chunk_ = chunk_ * 100000000u + value;
        pending_ += 8;
        if (pending_ == 19)
            flush();
    }
    void increment()
    {
        flush();
        for (int i = 0; i < kLimbs; ++i) {
            if (i == used_)
                ++used_;
            if (++limb_[i] != 0)
                return;
        }
        lost_ = true;
    }
    // Stores the magnitude right-aligned in bytes 1..len-1 of dest; false when
    // it needs more.
    bool store(CS_BYTE *dest, int len)
    {
        flush();
        if (lost_)
            return false;
        // The limbs as one big-endian run; bytes beyond the room must be 0.
        CS_BYTE be[kLimbs * 8];
        const int bytes = used_ * 8;
        for (int i = 0; i < used_; ++i) {
            const uint64_t w = __builtin_bswap64(limb_[i]);
            std::memcpy(be + bytes - 8 * (i + 1), &w, 8);
        }
        const int room = len - 1;
        const int skip = bytes > room ? bytes - room : 0;
        for (int k = 0; k < skip; ++k)
            if (be[k] != 0)
                return false;
        std::memcpy(dest + len - (bytes - skip), be + skip, static_cast<size_t>(bytes - skip));
        return true;
    }

private:
    static constexpr int kLimbs = 5;
    static constexpr uint64_t kPow10[20] = {1ULL,
                                            10ULL,
                                            100ULL,
                                            1000ULL,
                                            10000ULL,
                                            100000ULL,
                                            1000000ULL,
                                            10000000ULL,
                                            100000000ULL,
                                            1000000000ULL,
                                            10000000000ULL,
                                            100000000000ULL,
                                            1000000000000ULL,
                                            10000000000000ULL,
                                            100000000000000ULL,
                                            1000000000000000ULL,
                                            10000000000000000ULL,
                                            100000000000000000ULL,
                                            1000000000000000000ULL,
                                            10000000000000000000ULL};
    void flush()
    {
        if (pending_ == 0)
            return;
        // Only the limbs in use take part; a carry out of them opens the next.
        uint64_t carry = chunk_;
        const uint64_t mult = kPow10[pending_];
        for (int i = 0; i < used_; ++i) {
            const unsigned __int128 p = static_cast<unsigned __int128>(limb_[i]) * mult + carry;
            limb_[i] = static_cast<uint64_t>(p);
            carry = static_cast<uint64_t>(p >> 64);
        }
        if (carry != 0) {
            if (used_ < kLimbs)
                limb_[used_++] = carry;
            else
                lost_ = true;
        }
        chunk_ = 0;
        pending_ = 0;
    }
    uint64_t limb_[kLimbs]{};
    uint64_t chunk_ = 0;
    int pending_ = 0;
    int used_ = 0; // limbs below this may be non-zero
    bool lost_ = false; // a carry ran past the last limb
};

bool is_digit(unsigned char c) { return c >= '0' && c <= '9'; }

// Eight characters as a little-endian word: true when all are digits, and
// then their value, the first character most significant.
bool eight_digits(const unsigned char *p, uint32_t *value)
{
    uint64_t v;
    std::memcpy(&v, p, 8);
    if (((v & 0xF0F0F0F0F0F0F0F0ULL) | (((v + 0x0606060606060606ULL) & 0xF0F0F0F0F0F0F0F0ULL) >> 4)) !=
        0x3333333333333333ULL)
        return false;
    v -= 0x3030303030303030ULL;
    v = v * 10 + (v >> 8);
    v = (((v & 0x000000FF000000FFULL) * (100 + (1000000ULL << 32))) +
         (((v >> 16) & 0x000000FF000000FFULL) * (1 + (10000ULL << 32)))) >>
        32;
    *value = static_cast<uint32_t>(v);
    return true;
}

// The exponent behind an "e": an optional sign, then only digits at the
// second and third positions; from the fourth on, white space starts a tail
// that must be white space to the NUL.  The sum wraps in 32 bits.
bool read_exponent(const unsigned char *p, int32_t *exponent)
{
    bool neg = false;
    if (*p == '-' || *p == '+') {
        neg = *p == '-';
        ++p;
    }
    uint32_t acc = 0;
    for (int pos = 2; *p != 0; ++p, ++pos) {
        if (is_digit(*p)) {
            acc = acc * 10u + (*p - '0');
            continue;
        }
        if (pos < 4 || !kes::conv::is_white_space(*p))
            return false;
        for (; *p != 0; ++p)
            if (!kes::conv::is_white_space(*p))
                return false;
        break;
    }
    *exponent = static_cast<int32_t>(neg ? 0u - acc : acc);
    return true;
}

int clamp_shift(int64_t v) { return static_cast<int>(v < -1000 ? -1000 : v > 1000 ? 1000 : v); }

// True when no byte of the run is "e" or "E": a word at a time, folding case
// and testing for a zero byte.
bool no_exponent_letter(const unsigned char *p, int len)
{
    int i = 0;
    for (; i + 8 <= len; i += 8) {
        uint64_t w;
        std::memcpy(&w, p + i, 8);
        const uint64_t x = (w | 0x2020202020202020ULL) ^ 0x6565656565656565ULL;
        if (((x - 0x0101010101010101ULL) & ~x & 0x8080808080808080ULL) != 0)
            return false;
    }
    for (; i < len; ++i)
        if ((p[i] | 0x20) == 'e')
            return false;
    return true;
}

const unsigned char *find_exponent(const unsigned char *p, int len)
{
    if (no_exponent_letter(p, len))
        return nullptr;
    if (const void *e = std::memchr(p, 'e', static_cast<size_t>(len)))
        return static_cast<const unsigned char *>(e);
    return static_cast<const unsigned char *>(std::memchr(p, 'E', static_cast<size_t>(len)));
}

constexpr char kPairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                          "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                          "8081828384858687888990919293949596979899";

// The decimal digits of the magnitude, written backward so that they end just
// before `end`; returns how many.  Zero gives none.
int magnitude_digits(const CS_BYTE *v, int len, char *end)
{
    // Big-endian 32-bit limbs of the magnitude, leading zero limbs dropped.
    uint32_t limb[9];
    int n = 0;
    const int bytes = len - 1;
    const int head = bytes % 4;
    int k = 1;
    if (head != 0) {
        uint32_t x = 0;
        for (int i = 0; i < head; ++i)
            x = x << 8 | v[k++];
        limb[n++] = x;
    }
    while (k < len) {
        limb[n++] = static_cast<uint32_t>(v[k]) << 24 | static_cast<uint32_t>(v[k + 1]) << 16 |
                    static_cast<uint32_t>(v[k + 2]) << 8 | v[k + 3];
        k += 4;
    }
    int first = 0;
    while (first < n && limb[first] == 0)
        ++first;
    char *p = end;
    while (first < n) {
        uint64_t rem = 0;
        for (int i = first; i < n; ++i) {
            const uint64_t cur = rem << 32 | limb[i];
            limb[i] = static_cast<uint32_t>(cur / 1000000000u);
            rem = cur % 1000000000u;
        }
        if (limb[first] == 0)
            ++first;
        auto chunk = static_cast<uint32_t>(rem);
        if (first < n) {
            // A full chunk: nine digits, leading zeros included.
            for (int i = 0; i < 4; ++i, chunk /= 100) {
                p -= 2;
                std::memcpy(p, kPairs + 2 * (chunk % 100), 2);
            }
            *--p = static_cast<char>('0' + chunk);
        } else {
            for (; chunk >= 100; chunk /= 100) {
                p -= 2;
                std::memcpy(p, kPairs + 2 * (chunk % 100), 2);
            }
            if (chunk >= 10) {
                p -= 2;
                std::memcpy(p, kPairs + 2 * chunk, 2);
            } else {
                *--p = static_cast<char>('0' + chunk);
            }
        }
    }
    return static_cast<int>(end - p);
}

} // namespace

extern "C" {

int com__subchartoexctnume(char *cp, int len, CS_BYTE **dest, CS_INT *destlen, CS_BYTE *precision,
                           CS_BYTE *scale, int flag)
{
    if (*destlen == 0)
        *destlen = kMaxLen;
    KES_ASSERT(*destlen >= 2 && *destlen <= kMaxLen);
    std::memset(*dest, 0, static_cast<size_t>(*destlen));
    const int capacity = Com__Nume_Len_To_Prec[*destlen - 2];
    if (len < 0)
        return kMalformed;
    const bool tolerant = flag == 1;
    const auto *text = reinterpret_cast<const unsigned char *>(cp);

    int32_t exponent = 0;
    const unsigned char *exp_letter = find_exponent(text, len);
    if (exp_letter != nullptr && !read_exponent(exp_letter + 1, &exponent))
        return kMalformed;
    const bool has_exp = exp_letter != nullptr;
    const int target = static_cast<int>(static_cast<uint32_t>(*scale) + static_cast<uint32_t>(exponent));
    const int limit = has_exp ? target : *scale;

    bool negative = false;
    bool signed_seen = false;
    bool started = false;
    int total = 0, sig = 0, fd = -1, dropped = 0;
    bool rounded = false;
    DigitAccumulator acc;
    for (int i = 0; i < len; ++i) {
        const unsigned char c = text[i];
        if (!started) {
            if (c == '+' || c == '-') {
                if (signed_seen)
                    return kMalformed;
                signed_seen = true;
                negative = c == '-';
                continue;
            }
            if (c == ' ')
                continue;
            started = true;
        }
        if (!is_digit(c)) {
            if (c == '.' && fd == -1) {
                fd = 0;
                continue;
            }
            if (c == 'e' || c == 'E')
                break;
            if (!kes::conv::is_white_space(c))
                return kMalformed;
            for (; i < len; ++i)
                if (!kes::conv::is_white_space(text[i]))
                    return kMalformed;
            break;
        }
        // Past the leading zeros, runs of eight digits that are all stored
        // go in at once.
        uint32_t eight;
        if (sig != 0 && len - i >= 8 && sig + 8 <= capacity && (fd == -1 ? fd < limit : fd + 8 <= limit) &&
            eight_digits(text + i, &eight)) {
            total += 8;
            sig += 8;
            if (fd != -1)
                fd += 8;
            acc.push8(eight);
            i += 7;
            continue;
        }
        if (sig < capacity && fd < limit) {
            ++total;
            if (fd != -1)
                ++fd;
            if (c != '0' || sig != 0)
                ++sig;
            acc.push(c - '0');
            continue;
        }
        if (!tolerant)
            return kLostDigits;
        if (c >= '5' && fd == limit) {
            acc.increment();
            rounded = true;
            if (sig == 0)
                sig = 1;
        }
        ++dropped;
        if (fd != -1) {
            ++fd;
            break;
        }
    }

    __CONSTANT val{};
    val.len = *destlen;
    val.maxlen = *destlen;
    val.prec = static_cast<CS_BYTE>(capacity);
    val.value = *dest;
    if (!acc.store(*dest, *destlen))
        return kOverflow;

    if (fd == -1)
        fd = 0;
    // A wrapped exponent can be near either end of 32 bits: shifts are summed
    // in 64 bits and anything far past 77 places is cut to a size the
    // kernel still refuses.
    const int shift = clamp_shift(int64_t{exponent} + dropped - fd);
    int grown = 0; // digits the scaling may add
    if (*scale < kMaxPrec + 1) {
        const int by = clamp_shift(int64_t{*scale} + shift);
        if (-by <= total) {
            grown = by > 0 ? by : 0;
            const int st = com__exctnume_scale(&val, nullptr, by, flag);
            if (st != kOk && st != kLostDigits)
                return st;
            if (st == kLostDigits && !tolerant)
                return st;
        } else if (!tolerant) {
            return kLostDigits;
        } else {
            std::memset(*dest, 0, static_cast<size_t>(*destlen));
        }
    } else if (shift > 0) {
        *scale = 0;
        grown = shift;
        const int st = com__exctnume_scale(&val, nullptr, shift, flag);
        if (st != kOk)
            return st;
    } else if (fd == 0) {
        *scale = static_cast<CS_BYTE>(shift); // an exponent below the digits leaves a wrapped byte
    } else {
        *scale = static_cast<CS_BYTE>(fd);
    }
    if ((*dest)[0] != 0)
        return kOverflow;

    auto set_sign = [&] {
        if (negative && sig != 0 && (*destlen != 2 || (*dest)[1] != 0))
            (*dest)[0] = 1;
    };
    if (*precision >= 1 && *precision <= kMaxPrec) {
        set_sign();
        val.prec = *precision;
        // The value has at most sig digits, one more after a rounding, plus
        // those the scaling added; only a value that may be too long is tested.
        if (sig + grown + (rounded ? 1 : 0) <= *precision)
            return kOk;
        return com__exctnume_checkprecision(&val) ? kOverflow : kOk;
    }
    if (total < 1)
        total = 1;
    if (total > kMaxPrec)
        return kOverflow;
    int prec = total;
    if (prec > *scale && prec > sig)
        prec = sig > *scale ? sig : *scale + 1;
    *precision = static_cast<CS_BYTE>(prec);
    const int newlen = Com__Nume_Prec_To_Len[*precision <= kMaxPrec ? *precision : kMaxPrec];
    *dest += *destlen - newlen;
    *destlen = newlen;
    set_sign();
    return kOk;
}

int com__subexctnumetochar(__CONSTANT *srcconst, char *dest, int destlen)
{
    const int scale = srcconst->scale;
    const CS_BYTE *v = srcconst->value;
    const int len = srcconst->len;
    char digits[kMaxLen * 3];
    char *const dend = digits + sizeof digits;
    const int n = len >= 2 ? magnitude_digits(v, len, dend) : 0;
    const bool zero = n == 0;
    const bool neg = !zero && v[0] != 0;
    const int int_digits = n > scale ? n - scale : 1;
    const int need = int_digits + (scale != 0 ? scale + 1 : 0) + (neg ? 1 : 0);
    if (need > destlen)
        return -1;
    char *p = dest + destlen;
    const char *d = dend;
    int left = n;
    for (int i = 0; i < scale; ++i)
        *--p = left-- > 0 ? *--d : '0';
    if (scale != 0)
        *--p = '.';
    if (left <= 0) {
        *--p = '0';
    } else {
        p -= left;
        std::memcpy(p, d - left, static_cast<size_t>(left));
    }
    if (neg)
        *--p = '-';
    return static_cast<int>(p - dest);
}

} // extern "C"
