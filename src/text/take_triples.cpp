#include "text/take_triples.h"

#ifdef __x86_64__

#include "text/load_eight.h"

#include <immintrin.h>

#include <array>

// For a function that runs only where HasInstructions. Nothing else in this file may use the instructions,
// nor may they be switched on for the whole file: the linker could take its copy of an inline function for
// all others.
#define TARNWICK_WIDE [[gnu::target("avx2,bmi,bmi2")]]

namespace tarnwick {

namespace {

bool HasInstructions() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
}

const bool kHasInstructions = HasInstructions();

// Which of 16 characters are the digits of a number that begins with them: right-aligned, the point left out,
// zeros before them.
constexpr std::size_t kLongest = 16;
struct alignas(16) Digits {
    std::uint8_t places[kLongest];
};
// By the length of the number, less 1, and the place of its point.
using DigitsOfNumbers = std::array<std::array<Digits, kLongest>, kLongest>;

constexpr DigitsOfNumbers MakeDigits() {
    constexpr std::uint8_t kZero = 0x80;
    DigitsOfNumbers all{};
    for (std::size_t length = 1; length <= kLongest; ++length) {
        for (std::size_t point = 0; point < length; ++point) {
            const std::size_t zeros = kLongest - (length - 1);
            for (std::size_t i = 0; i < kLongest; ++i) {
                const std::size_t digit = i - zeros; // where there is one
                all[length - 1][point].places[i] =
                    i < zeros ? kZero : static_cast<std::uint8_t>(digit + (digit >= point ? 1 : 0));
            }
        }
    }
    return all;
}

constexpr DigitsOfNumbers kDigits = MakeDigits();

// ParseReal's scale for so many digits after the point, and its negative for a number with a "-": the product
// with that has the same bits as the negative of the product.
struct Scales {
    double of[2][kLongest];
};

constexpr Scales MakeScales() {
    Scales scales{};
    double scale = 1.0;
    for (std::size_t i = 0; i < kLongest; ++i) {
        scales.of[0][i] = scale;
        scales.of[1][i] = -scale;
        scale = scale * 0.1;
    }
    return scales;
}

constexpr Scales kScales = MakeScales();

// Bits of the digits and of the "-" among the 64 characters from `p` on.
struct Marks {
    std::uint64_t digits = 0;
    std::uint64_t minuses = 0;
};

TARNWICK_WIDE inline __m128i Load(const char* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

// 0 to 9 where the characters are digits.
TARNWICK_WIDE inline __m128i LessZero(__m128i characters) {
    return _mm_sub_epi8(characters, _mm_set1_epi8('0'));
}

TARNWICK_WIDE inline std::uint64_t Bits(__m128i marks) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(marks));
}

TARNWICK_WIDE inline std::uint64_t DigitBits(__m128i characters) {
    const __m128i values = LessZero(characters);
    return Bits(_mm_cmpeq_epi8(_mm_min_epu8(values, _mm_set1_epi8(9)), values));
}

TARNWICK_WIDE inline Marks MarksOf(const char* p) {
    Marks marks;
    for (int part = 0; part < 4; ++part) {
        const __m128i characters = Load(p + 16 * part);
        marks.digits |= DigitBits(characters) << (16 * part);
        marks.minuses |= Bits(_mm_cmpeq_epi8(characters, _mm_set1_epi8('-'))) << (16 * part);
    }
    return marks;
}

// 16 digits, each a byte, as four numbers of four digits.
TARNWICK_WIDE inline __m128i Fours(__m128i digits) {
    const __m128i pairs = _mm_maddubs_epi16(digits, _mm_set1_epi16(0x010A)); // by 10 and 1
    return _mm_madd_epi16(pairs, _mm_set1_epi32(0x00010064));                // by 100 and 1
}

// Eight numbers of four digits as four numbers of eight.
TARNWICK_WIDE inline __m128i Eights(__m128i fours, __m128i more) {
    return _mm_madd_epi16(_mm_packus_epi32(fours, more), _mm_set1_epi32(0x00012710)); // by 10000 and 1
}

// The upper and the lower eight digits of a number; their sum is exact, since it has 15 digits at most.
TARNWICK_WIDE inline __m128d Halves(__m128i eights) {
    return _mm_mul_pd(_mm_cvtepi32_pd(eights), _mm_setr_pd(1e8, 1));
}

// Where a number is among the characters of its triple.
struct Place {
    std::size_t start; // after the sign
    std::size_t point;
    std::size_t end;
    std::size_t sign; // 1 for a "-"

    std::size_t LengthLessOne() const { return end - start - 1; }
    std::size_t Decimals() const { return end - point - 1; }
};

TARNWICK_WIDE inline Place PlaceOf(std::size_t start, std::size_t point, std::size_t end,
                                   std::uint64_t minuses) {
    const std::size_t sign = (minuses >> start) & 1;
    return {start + sign, point, end, sign};
}

TARNWICK_WIDE inline __m128i FoursOf(const char* p, const Place& place) {
    const Digits& digits = kDigits[place.LengthLessOne()][place.point - place.start];
    const __m128i places = _mm_load_si128(reinterpret_cast<const __m128i*>(digits.places));
    return Fours(_mm_shuffle_epi8(LessZero(Load(p + place.start)), places));
}

TARNWICK_WIDE inline std::size_t TakeLowest(std::uint64_t* bits) {
    const std::size_t place = _tzcnt_u64(*bits); // 64 when none is left
    *bits = _blsr_u64(*bits);
    return place;
}

// Takes one triple and returns its length; 0 for one in another form.
TARNWICK_WIDE inline std::size_t TakeTriple(const char* p, float* out) {
    const Marks marks = MarksOf(p);
    // What is neither digit nor "-": the "(", then the point and the end of each number.
    std::uint64_t others = _blsr_u64(~(marks.digits | marks.minuses));
    const std::size_t pointA = TakeLowest(&others);
    const std::size_t endA = TakeLowest(&others);
    const std::size_t pointB = TakeLowest(&others);
    const std::size_t endB = TakeLowest(&others);
    const std::size_t pointC = TakeLowest(&others);
    const std::size_t endC = TakeLowest(&others);
    if (endC >= 64) { return 0; }
    const Place a = PlaceOf(1, pointA, endA, marks.minuses);
    const Place b = PlaceOf(endA + 1, pointB, endB, marks.minuses);
    const Place c = PlaceOf(endB + 1, pointC, endC, marks.minuses);
    const std::uint64_t signs = a.sign << 1 | b.sign << (endA + 1) | c.sign << (endB + 1);
    const std::size_t lengths = a.LengthLessOne() | b.LengthLessOne() | c.LengthLessOne();
    if (_bzhi_u64(marks.minuses, static_cast<unsigned>(endC)) != signs || lengths >= kLongest) { return 0; }
    if (p[pointA] != '.' || p[endA] != ',' || p[pointB] != '.' || p[endB] != ',' || p[pointC] != '.' ||
        p[endC] != ')') {
        return 0;
    }
    const __m128i foursC = FoursOf(p, c);
    const __m128i eightsAB = Eights(FoursOf(p, a), FoursOf(p, b));
    const __m128d halvesC = Halves(Eights(foursC, foursC));
    const __m128d halvesB = Halves(_mm_unpackhi_epi64(eightsAB, eightsAB));
    const __m128d scalesAB = _mm_setr_pd(kScales.of[a.sign][a.Decimals()], kScales.of[b.sign][b.Decimals()]);
    const __m128d valuesAB = _mm_mul_pd(_mm_hadd_pd(Halves(eightsAB), halvesB), scalesAB);
    const double valueC = _mm_cvtsd_f64(_mm_hadd_pd(halvesC, halvesC)) * kScales.of[c.sign][c.Decimals()];
    _mm_storel_pi(reinterpret_cast<__m64*>(out), _mm_cvtpd_ps(valuesAB));
    out[2] = static_cast<float>(valueC);
    return endC + 1;
}

// The `length` digits at `p`, 1 to 8, each a byte, with zeros before them.
TARNWICK_WIDE inline long long RightAligned(const char* p, std::size_t length) {
    return static_cast<long long>((LoadEight(p) - 0x3030303030303030u) << (64 - 8 * length));
}

// The same for indices.
TARNWICK_WIDE inline std::size_t TakeTriple(const char* p, std::uint32_t* out) {
    constexpr std::size_t kMostDigits = 8;
    // What is no digit: the "(", then the end of each number.
    std::uint64_t others = _blsr_u64(~(DigitBits(Load(p)) | DigitBits(Load(p + 16)) << 16));
    const std::size_t endA = TakeLowest(&others);
    const std::size_t endB = TakeLowest(&others);
    const std::size_t endC = TakeLowest(&others);
    const std::size_t lengthA = endA - 1;
    const std::size_t lengthB = endB - endA - 1;
    const std::size_t lengthC = endC - endB - 1;
    if (((lengthA - 1) | (lengthB - 1) | (lengthC - 1)) >= kMostDigits) { return 0; }
    if (p[endA] != ',' || p[endB] != ',' || p[endC] != ')') { return 0; }
    const __m128i digitsAB =
        _mm_set_epi64x(RightAligned(p + endA + 1, lengthB), RightAligned(p + 1, lengthA));
    const __m128i digitsC = _mm_cvtsi64_si128(RightAligned(p + endB + 1, lengthC));
    const __m128i values = _mm_sub_epi32(Eights(Fours(digitsAB), Fours(digitsC)), _mm_set1_epi32(1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), values);
    out[2] = static_cast<std::uint32_t>(_mm_extract_epi32(values, 2));
    return endC + 1;
}

template <class Number>
TARNWICK_WIDE std::size_t TakeAll(const char** at, Number* out, std::size_t most) {
    std::size_t taken = 0;
    for (const char* p = *at; taken < most; ++p) {
        const std::size_t length = TakeTriple(p, out + 3 * taken);
        if (length == 0) { break; }
        ++taken;
        p += length;
        *at = p;
        if (p[0] != ',' || p[1] != '(') { break; }
    }
    return taken;
}

} // namespace

std::size_t TakeTriples(const char** p, float* out, std::size_t most) {
    return kHasInstructions && **p == '(' ? TakeAll(p, out, most) : 0;
}

std::size_t TakeTriples(const char** p, std::uint32_t* out, std::size_t most) {
    return kHasInstructions && **p == '(' ? TakeAll(p, out, most) : 0;
}

} // namespace tarnwick

#else

namespace tarnwick {

std::size_t TakeTriples(const char**, float*, std::size_t) {
    return 0;
}

std::size_t TakeTriples(const char**, std::uint32_t*, std::size_t) {
    return 0;
}

} // namespace tarnwick

#endif
