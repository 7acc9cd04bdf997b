#include "tests/stress/judge_field.h"

#include "numbers/number_modes.h"

#include <cstdlib>
#include <map>
namespace tolvex::test {
static constexpr uint64_t k_mersenne = (uint64_t{1} << 61) - 1;
static constexpr uint32_t k_small_prime = 1000;     // below it points come from an extension
static constexpr uint64_t k_wanted_size = 1 << 15;  // elements of an extension, at least

JudgeField JudgeField::residues(uint64_t modulus_) {
    JudgeField f;
    f.q = modulus_;
    return f;
}

uint64_t JudgeField::mul(uint64_t a, uint64_t b) const {
    if (p == 0) return static_cast<uint64_t>(static_cast<unsigned __int128>(a) * b % q);
    if (a == 0 || b == 0) return 0;
    return (a - 1 + b - 1) % (q - 1) + 1;
}

uint64_t JudgeField::add(uint64_t a, uint64_t b) const {
    if (p == 0) return (a + b) % q;
    if (a == 0) return b;
    if (b == 0) return a;
    uint64_t sum = zech[(b + q - 1 - a) % (q - 1)];
    return sum == q ? 0 : (a - 1 + sum) % (q - 1) + 1;
}

uint64_t JudgeField::neg(uint64_t a) const {
    if (p == 0) return a == 0 ? 0 : q - a;
    return mul(a, minus_one);
}

uint64_t JudgeField::power(uint64_t a, uint64_t e) const {
    uint64_t r = 1;
    for (; e != 0; e >>= 1) {
        if (e & 1) r = mul(r, a);
        a = mul(a, a);
    }
    return r;
}

uint64_t JudgeField::random_unit(std::mt19937_64& rng) const { return rng() % (q - 1) + 1; }

uint64_t JudgeField::of_number(const number* n) const {
    if (lintmode) return p == 0 ? static_cast<uint64_t>(n->lint) : of_word[static_cast<size_t>(n->lint)];
    uint64_t v = 0;
    bool negative = false;
    for (const numnode* d = n->head; d != nullptr; d = d->next) {
        negative = negative || d->value < 0;
        v = add(mul(v, uint64_t{1} << 28), static_cast<uint64_t>(d->value < 0 ? -d->value : d->value));
    }
    return negative ? neg(v) : v;
}

// powers[i]: the code of g^i, g a generator; codes add without carry in base `characteristic`.
void JudgeField::tabulate(const std::vector<uint32_t>& powers, uint32_t characteristic) {
    p = characteristic;
    q = powers.size() + 1;
    of_word.assign(q, 0);
    for (uint32_t i = 0; i + 1 < q; i++) of_word[powers[i]] = i + 1;
    zech.resize(q - 1);
    for (uint32_t i = 0; i + 1 < q; i++) {
        uint32_t code = powers[i], low = code % p, sum = code - low + (low + 1) % p;
        zech[i] = sum == 0 ? static_cast<uint32_t>(q) : of_word[sum] - 1;
    }
    minus_one = of_word[p - 1];
}

// x times the code, modulo the monic polynomial of the given tail (digits in base p, degree k).
static uint32_t times_x(uint32_t code, uint32_t tail, uint32_t p, uint32_t top_weight) {
    uint32_t top = code / top_weight, rest = code % top_weight * p, out = 0, weight = 1;
    for (; rest != 0 || tail != 0; weight *= p) {
        out += (rest % p + (p - top) * (tail % p)) % p * weight;
        rest /= p;
        tail /= p;
    }
    return out;
}

// Random tails until x generates the whole group.
JudgeField JudgeField::extension(uint32_t prime) {
    uint64_t size = prime;
    while (size < k_wanted_size) size *= prime;
    std::mt19937_64 rng(prime);
    std::vector<uint32_t> powers(size - 1);
    for (;;) {
        auto tail = static_cast<uint32_t>(rng() % size);
        uint32_t code = 1;
        uint64_t order = 0;
        do {
            powers[order++] = code;
            code = times_x(code, tail, prime, static_cast<uint32_t>(size / prime));
        } while (code > 1 && order < size - 1);
        if (order == size - 1 && code == 1) break;
    }
    JudgeField f;
    f.tabulate(powers, prime);
    f.of_word.resize(prime);  // numbers are the codes below p
    return f;
}

// GF(2^8) as bit vectors modulo x^8 + x^4 + x^3 + x + 1.
static uint32_t byte_product(uint32_t a, uint32_t b) {
    uint32_t r = 0;
    for (; b != 0; b >>= 1) {
        if (b & 1) r ^= a;
        a <<= 1;
        if (a & 256) a ^= 0x11b;
    }
    return r;
}

// GF(2^16) over it: h z + l with z^2 = 2 z + 1, 2 the byte x.
static uint32_t pair_product(uint32_t a, uint32_t b) {
    uint32_t h = byte_product(a >> 8, b >> 8);
    uint32_t middle = byte_product(a >> 8, b & 255) ^ byte_product(a & 255, b >> 8);
    return (byte_product(h, 2) ^ middle) << 8 | (h ^ byte_product(a & 255, b & 255));
}

// GF(2^8) is the low byte of GF(2^16), so one field serves both; its generator is z + 7.
JudgeField JudgeField::table_field(int32_t) {
    std::vector<uint32_t> powers;
    uint32_t code = 1;
    do {
        powers.push_back(code);
        code = pair_product(code, 263);
    } while (code != 1);
    if (powers.size() != 65535) abort();
    JudgeField f;
    f.tabulate(powers, 2);
    return f;
}

const JudgeField& JudgeField::of_ring() {
    static std::map<int64_t, JudgeField> made;
    int64_t key = !modularmode ? 0 : finf ? -1 : modulus;
    auto found = made.find(key);
    if (found != made.end()) return found->second;
    JudgeField f = key == 0  ? residues(k_mersenne)
                   : key < 0 ? table_field(modulus)
                   : mod_is_prime && modulus < static_cast<int32_t>(k_small_prime)
                       ? extension(static_cast<uint32_t>(modulus))
                       : residues(static_cast<uint64_t>(modulus));
    return made.emplace(key, f).first->second;
}
}  // namespace tolvex::test
