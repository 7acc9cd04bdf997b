#include "field/aux_primes.h"

#include "field/field_modes.h"
#include "field/irreducible.h"
#include "gcd/gcd_modes.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/scratch.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
namespace tolvex {
// ---- first primes --------------------------------------------------------------------------------------

int32_t first_candidate(int32_t k) {
    constexpr int32_t k_twice = 4;  // prime[4] is in the table of medium primes as well
    if (k < k_primes) return prime[k].lint;
    k -= k_primes;
    int32_t skipped = 0;
    while (med_prime[skipped] != prime[k_twice].lint) skipped++;
    if (k >= skipped) k++;
    return k < k_med_primes ? med_prime[k] : big_prime[k - k_med_primes];
}

bool irreducible_modulo(NewLevel level, int32_t p) {
    RingState ring = ring_save();
    ring_enter_prime(p);
    bool irreducible = tw_irreducible(candidate_words(level.f, level.below), level.below + 1);
    ring_restore(ring);
    return irreducible;
}

/// The tower below is a field modulo p.
static bool field_below(int32_t below, int32_t p) {
    RingState ring = ring_save();
    ring_enter_prime(p);
    bool field = true;
    for (int32_t h = 1; h <= below && field; h++) field = tw_irreducible(lowest_levels(h), h);
    ring_restore(ring);
    return field;
}

void find_first_primes(NewLevel level, const PrimeList* from, PrimeList* found, bool shown) {
    constexpr int32_t k_dot = 10, k_line = 100;
    const int32_t count = from != nullptr ? from->count : aux_num_1factor;
    found->count = 0;
    for (int32_t k = 0; k < count; k++) {
        poll_interrupt();
        int32_t p = from != nullptr ? from->prime[k] : first_candidate(k);
        bool below = from != nullptr || field_below(level.below, p);
        if (below && irreducible_modulo(level, p)) found->prime[found->count++] = p;
        if (shown && (k + 1) % k_dot == 0) printf(" %1d%s", k + 1, (k + 1) % k_line == 0 ? "\n" : "");
    }
    if (shown && count % k_line >= k_dot) putchar('\n');
}

// ---- roots modulo a prime ------------------------------------------------------------------------------

/// The level whose modding polynomial is g, monic of degree n, over the words in force.
static void level_of(TowerWords& t, const uint32_t* g, int32_t n) {
    t.f = word_field_ring();
    t.height = 1;
    t.at[0] = {1, 1, nullptr, false};
    t.at[1] = {n, n, g, false};
}

/// The roots of g, monic of degree n >= 1, a product of different linear factors, appended to root[*count..].
static void split_roots(const uint32_t* g, int32_t n, uint32_t* root, int32_t* count) {
    TowerWords t;
    level_of(t, g, n);
    if (n == 1) {
        root[(*count)++] = wf_neg(t.f, g[0]);
        return;
    }
    const size_t bytes = static_cast<size_t>(n + 1) * sizeof(uint32_t);
    ScratchMark mark = scratch_mark();
    auto *power = scratch_array<uint32_t>(n + 1), *a = scratch_array<uint32_t>(n + 1),
         *q = scratch_array<uint32_t>(n + 1);
    for (uint32_t shift = 0;; shift++) {  // half of all shifts separate two roots
        memset(power, 0, bytes);
        power[0] = shift;
        power[1] = 1;
        tw_power(t, 1, power, (t.f.p - 1) / 2, power);
        power[0] = wf_sub(t.f, power[0], 1);
        memcpy(a, g, bytes);
        uint32_t* d = nullptr;
        int32_t degree = tw_poly_gcd(t, 0, a, n, power, n - 1, &d);
        if (degree < 1 || degree == n) continue;
        memcpy(q, d, static_cast<size_t>(degree + 1) * sizeof(uint32_t));
        split_roots(q, degree, root, count);
        memcpy(a, g, bytes);
        tw_divide(t, 0, a, n, q, degree, power);
        split_roots(power, n - degree, root, count);
        break;
    }
    scratch_release(mark);
}

/// The roots of g, monic of degree n >= 2, over the words in force, ascending; returns their number.
static int32_t find_roots(const uint32_t* g, int32_t n, uint32_t* root) {
    TowerWords t;
    level_of(t, g, n);
    ScratchMark mark = scratch_mark();
    auto *x = scratch_array<uint32_t>(n + 1), *a = scratch_array<uint32_t>(n + 1);
    memset(x, 0, static_cast<size_t>(n + 1) * sizeof(uint32_t));
    x[1] = 1;
    tw_power(t, 1, x, t.f.p, x);
    x[1] = wf_sub(t.f, x[1], 1);
    memcpy(a, g, static_cast<size_t>(n + 1) * sizeof(uint32_t));
    uint32_t* d = nullptr;
    int32_t degree = tw_poly_gcd(t, 0, a, n, x, n - 1, &d), count = 0;
    if (degree > 0) split_roots(d, degree, root, &count);
    for (int32_t i = 1; i < count; i++)  // few: insertion
        for (int32_t j = i; j > 0 && root[j - 1] > root[j]; j--) {
            uint32_t r = root[j];
            root[j] = root[j - 1];
            root[j - 1] = r;
        }
    scratch_release(mark);
    return count;
}

uint32_t value_at_roots(const WordField& f, const polynode* p, int32_t h, const uint32_t* root, uint32_t x) {
    uint32_t v = 0;
    if (is_number(p)) return wf_of_number(f, p->ncoef);
    for (; p != nullptr; p = p->next) {
        uint32_t c =
            p->numb ? wf_of_number(f, p->ncoef) : value_at_roots(f, p->pcoef, h - 1, root, root[h - 1]);
        v = wf_add(f, v, c);
        int32_t gap = p->exp - (p->next != nullptr ? p->next->exp : 0);
        if (gap > 0) v = wf_mul(f, v, wf_power(f, x, static_cast<uint64_t>(gap)));
    }
    return v;
}

// ---- second primes -------------------------------------------------------------------------------------

namespace {
/// The levels of the tower, deepest first, and the roots chosen so far for one prime.
struct RootSearch {
    LevelSource level[k_levels + 1];  // [1..height]
    int32_t height;
    uint32_t root[k_levels + 1];
};
}  // namespace

static void open_search(RootSearch* s, NewLevel level) {
    (void)tower_levels(s->level + 1);
    s->height = level.below + 1;
    s->level[s->height] = {level.f, level.f->exp, nullptr};
}

/// g := the modding polynomial of height h at the roots below, modulo the prime in force; n + 1 coefficients.
static void modder_at_roots(const RootSearch& s, int32_t h, uint32_t* g) {
    const WordField f = word_field_ring();
    const LevelSource& level = s.level[h];
    memset(g, 0, static_cast<size_t>(level.n + 1) * sizeof(uint32_t));
    g[level.n] = 1;
    lintmode = 0;  // modding polynomials have chains
    if (is_number(level.p)) {
        g[0] = wf_neg(f, wf_of_number(f, level.p->ncoef));
    } else {
        for (const polynode* c = level.p->next; c != nullptr; c = c->next)
            g[c->exp] = c->numb ? wf_of_number(f, c->ncoef)
                                : value_at_roots(f, c->pcoef, h - 1, s.root, s.root[h - 1]);
    }
    lintmode = 1;
}

/// Chooses roots from height h on, the least that lead to the top; false: there are none.
static bool choose_roots(RootSearch& s, int32_t h) {
    if (h > s.height) return true;
    const int32_t n = s.level[h].n;
    ScratchMark mark = scratch_mark();
    auto *g = scratch_array<uint32_t>(n + 1), *root = scratch_array<uint32_t>(n + 1);
    modder_at_roots(s, h, g);
    int32_t count = find_roots(g, n, root);
    bool found = false;
    for (int32_t i = 0; i < count && !found; i++) {
        s.root[h] = root[i];
        found = choose_roots(s, h + 1);
    }
    scratch_release(mark);
    return found;
}

/// Candidate k of the search: the three tables, each from its end.
static int32_t second_candidate(int32_t k) {
    if (k < k_big_primes) return big_prime[k_big_primes - 1 - k];
    k -= k_big_primes;
    if (k < k_primes) return prime[k_primes - 1 - k].lint;
    k -= k_primes;
    return med_prime[k_med_primes - 1 - k];
}
static constexpr int32_t k_second_candidates = k_big_primes + k_primes + k_med_primes;

static SecondLists empty_lists(const RootSearch& s, int32_t room) {
    return {0, s.height, room, scratch_array<RootPrime>(int64_t{s.height + 1} * room)};
}

/// Inserts the prime with its roots by falling primes; one that is there already is left.
static void add_prime_to_list(const RootSearch& s, SecondLists& lists, int32_t p) {
    int32_t at = lists.count;
    const RootPrime* deepest = lists.found + lists.room;
    while (at > 0 && deepest[at - 1].prime < p) at--;
    if (at > 0 && deepest[at - 1].prime == p) return;
    for (int32_t h = 1; h <= s.height; h++) {
        RootPrime* row = lists.found + h * lists.room;
        memmove(row + at + 1, row + at, static_cast<size_t>(lists.count - at) * sizeof(RootPrime));
        row[at] = {p, static_cast<int32_t>(s.root[h])};
    }
    lists.count++;
}

SecondLists make_and_reconcile_gcd_lists(NewLevel level) {
    RootSearch s;
    open_search(&s, level);
    int64_t tries = aux_num_2factor;
    for (int32_t h = 1; h <= s.height && tries < k_second_candidates; h++) tries *= s.level[h].n;
    if (tries > k_second_candidates) tries = k_second_candidates;
    SecondLists lists = empty_lists(s, static_cast<int32_t>(tries + 1));
    for (int32_t k = 0; k < tries; k++) {
        poll_interrupt();
        const int32_t p = second_candidate(k);
        RingState ring = ring_save();
        ring_enter_prime(p);
        bool split = choose_roots(s, 1);
        ring_restore(ring);
        if (split) add_prime_to_list(s, lists, p);
    }
    return lists;
}

/// The roots of the levels below the top one modulo p, from their lists. False: p is not among their primes.
static bool roots_below(RootSearch& s, int32_t p) {
    if (s.height == 1) return true;
    const polydata* deepest = s.level[1].variable;
    int32_t k = 0;
    while (k < deepest->aux_num && deepest->gcd_data[k].prime != p) k++;
    if (k == deepest->aux_num) return false;
    for (int32_t h = 1; h < s.height; h++)
        s.root[h] = static_cast<uint32_t>(s.level[h].variable->gcd_data[k].root);
    return true;
}

static bool is_root_pair(RootSearch& s, RootPrime pair) {
    constexpr int32_t k_greatest = 65521;
    if (pair.prime < 2 || pair.prime > k_greatest || !is_prime(pair.prime) || pair.root < 0 ||
        pair.root >= pair.prime || !roots_below(s, pair.prime))
        return false;
    const int32_t n = s.level[s.height].n;
    ScratchMark mark = scratch_mark();
    auto* g = scratch_array<uint32_t>(n + 1);
    RingState ring = ring_save();
    ring_enter_prime(pair.prime);
    modder_at_roots(s, s.height, g);
    bool root = wf_value(word_field_ring(), g, n, static_cast<uint32_t>(pair.root)) == 0;
    ring_restore(ring);
    scratch_release(mark);
    s.root[s.height] = static_cast<uint32_t>(pair.root);
    return root;
}

SecondLists take_gcd_lists(NewLevel level, const RootPrime* pair, int32_t count) {
    RootSearch s;
    open_search(&s, level);
    SecondLists lists = empty_lists(s, count + 1);
    for (int32_t k = 0; k < count; k++)
        if (is_root_pair(s, pair[k])) add_prime_to_list(s, lists, pair[k].prime);
    return lists;
}

// ---- the lists of the levels ---------------------------------------------------------------------------

void free_gcd_lists() {
    for (polypt v = polynames; v != nullptr; v = v->next) {
        free(v->gcd_data);
        v->gcd_data = nullptr;
        v->aux_num = 0;
    }
    no_aux_primes2 = 1;
}

void install_second_lists(const SecondLists& lists) {
    constexpr int32_t k_few = 5;
    free_gcd_lists();
    LevelSource level[k_levels];
    int32_t height = tower_levels(level);
    const size_t bytes = static_cast<size_t>(lists.count) * sizeof(RootPrime);
    for (int32_t h = 1; h <= height; h++) {
        polypt v = level[h - 1].variable;
        v->gcd_data = static_cast<RootPrime*>(checked_malloc(bytes + sizeof(RootPrime)));
        memcpy(v->gcd_data, lists.found + h * lists.room, bytes);
        v->aux_num = static_cast<int16_t>(lists.count);
    }
    no_aux_primes2 = lists.count < k_few;
}

void roots_of_prime(int32_t k, int32_t* p, uint32_t* root) {
    LevelSource level[k_levels];
    int32_t height = tower_levels(level);
    *p = level[0].variable->gcd_data[k].prime;
    for (int32_t h = 1; h <= height; h++)
        root[h] = static_cast<uint32_t>(level[h - 1].variable->gcd_data[k].root);
}
}  // namespace tolvex
