#include "gcd/word_primes.h"

#include "numbers/primes.h"
#include "poly/packed_crt.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
int64_t gcd_bits(const WordGcdEnv& env, const PackPlan& plan, int32_t digits) {
    int64_t sum = 0;
    for (int32_t k = 0; k < plan.count; k++) sum += plan.radix[k];
    int64_t all = minn(env.um.digits, env.vm.digits) + int64_t{digits};
    return all * k_digit_bits + sum + sum / 2 + 2;
}

// The symmetric combination, made primitive, divides both operands: then it is the gcd.
static bool accept(const PrimeImages& p, CrtTerms& t, polyptrr g) {
    bool coprime = t.count == 1 && t.index[0] == 0;  // no prime that keeps a leading number errs in this
    poly candidate = pack_tree(*p.plan, nullptr, t.index, t.count, leaf_of_crt, &t);
    *g = primitive_copy(candidate);
    free_poly(&candidate);
    if (coprime || divides_both(*p.env, *g)) return true;
    free_poly(g);
    return false;
}

static uint32_t prime_number(const PrimeImages& p, int32_t i) {
    if (p.first != 0 && i == 0) return p.first;
    auto word_prime = static_cast<uint32_t>(lrgpme[k_lrg_primes - 1 - (p.first != 0 ? i - 1 : i)]);
    return word_prime == p.first ? 0 : word_prime;
}

bool gcd_from_primes(const PrimeImages& p, polyptrr g) {
    CrtTerms t = crt_open(4);
    for (int32_t i = 0; i < k_lrg_primes; i++) {
        poll_interrupt();
        uint32_t word_prime = prime_number(p, i);
        if (word_prime == 0) continue;
        ScratchMark mark = scratch_mark();
        WordField f = word_field_prime(word_prime);
        PackTerms image;
        if (!p.image(p.source, f, &image) || (t.primes > 0 && image.index[0] > t.index[0])) {
            scratch_release(mark);
            if (p.hopeless != nullptr && *p.hopeless) return false;
            continue;
        }
        bool kept = t.primes > 0 && image.index[0] < t.index[0];
        if (kept) t = crt_open(4);  // all primes so far were unlucky
        bool grown;
        bool settled = crt_add(&t, image, f, &grown);
        // The first image alone is often the gcd; after it a change-free word tells that all digits are
        // there.
        if ((settled || t.primes == 1) && accept(p, t, g)) return true;
        if (settled && p.one_shot) return false;
        if (crt_product_bits(t) > p.bits) return false;
        if (!grown && !kept) scratch_release(mark);
    }
    return false;
}
}  // namespace tolvex
