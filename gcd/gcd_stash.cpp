#include "gcd/gcd_stash.h"

#include "gcd/gcd_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly_basic.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/failure.h"
namespace tolvex {
namespace {
/// What all entries of the table have in common.
struct Setting {
    int32_t modulus;
    boolean table_field, laurent;
    int64_t changes;
    bool operator==(const Setting&) const = default;
};
GcdEntry* bucket[k_gcd_buckets];
GcdEntry* retired = nullptr;  // taken out of the table while their slots were open
GcdEntry* entry_garb = nullptr;
Setting made_for = {-1, 0, 0, 0};
int64_t changes = 0;
}  // namespace

static Setting setting_in_force() { return {modulus, finf, laurent, changes}; }

// ---- giving back ---------------------------------------------------------------------------------------

/// True if a frame will write through this slot.
static bool is_open(const GcdEntry* e) { return polygcd_stack_depth > 0 && e->slot->next == nullptr; }

/// The entry may stem from another ring: chains go back whatever the mode.
static void free_entry(GcdEntry* e) {
    special_free_poly(&e->lo);
    special_free_poly(&e->slot->pcoef);
    special_free_poly(&e->slot->next);
    free_node(e->slot);
    pool_push<&GcdEntry::next>(entry_garb, e);
}

/// Takes e out of the table; an open one is retired.
static void discard(GcdEntry* e) {
    if (is_open(e)) {
        e->next = retired;
        retired = e;
    } else {
        free_entry(e);
    }
}

static void free_retired() {
    if (polygcd_stack_depth > 0) return;
    while (retired != nullptr) {
        GcdEntry* next = retired->next;
        free_entry(retired);
        retired = next;
    }
}

static void empty_table() {
    for (GcdEntry*& head : bucket)
        while (head != nullptr) {
            GcdEntry* e = head;
            head = e->next;
            discard(e);
        }
    gcdmass = 0;
    free_retired();
}

void gcd_stash_outdated() {
    changes++;
    empty_table();
}

/// The table serves the setting in force from now on.
static void bring_up_to_date() {
    free_retired();
    if (made_for == setting_in_force()) return;
    empty_table();
    made_for = setting_in_force();
}

// ---- the hash ------------------------------------------------------------------------------------------

static constexpr int32_t k_terms_hashed = 6;
static constexpr int32_t k_levels_hashed = 4;

static int32_t hash_of(const polynode* p, int32_t depth) {
    uint32_t h = 0;
    for (int32_t i = 0; p != nullptr && i < k_terms_hashed; i++, p = p->next) {
        uint32_t v;
        if (!p->numb) {
            // deeper than that the first term decides: six terms at every level would be too many
            v = static_cast<uint32_t>(hash_of(p->pcoef, depth + 1));
        } else if (lintmode) {
            v = static_cast<uint32_t>(p->ncoef->lint);
        } else {
            int32_t head = p->ncoef->head->value;
            v = static_cast<uint32_t>((head < 0 ? -head : head) % k_gcd_buckets + p->ncoef->size);
        }
        h = h * 31 + v % k_gcd_buckets + static_cast<uint32_t>(p->exp);
        if (depth >= k_levels_hashed) break;
    }
    return static_cast<int32_t>(h % k_gcd_buckets);
}

namespace {
/// A pair in its canonical order.
struct Pair {
    poly lo, hi;
    int32_t level, index;
};
}  // namespace

static Pair pair_of(poly u, poly v, polypt pt) {
    Pair p = {u, v, field_depth > 0 ? pt->depth : 0, 0};
    if (v->exp < u->exp) p.lo = v, p.hi = u;
    p.index = (hash_of(p.lo, 1) + hash_of(p.hi, 1)) % k_gcd_buckets;
    return p;
}

static bool matches(const GcdEntry* e, const Pair& p) {
    if (e->level != p.level) return false;
    if (poly_equal(e->lo, p.lo) && poly_equal(e->slot->pcoef, p.hi)) return true;
    return p.lo->exp == p.hi->exp && poly_equal(e->lo, p.hi) && poly_equal(e->slot->pcoef, p.lo);
}

static GcdEntry* find(const Pair& p) {
    for (GcdEntry* e = bucket[p.index]; e != nullptr; e = e->next)
        if (matches(e, p)) return e;
    return nullptr;
}

// ---- entries -------------------------------------------------------------------------------------------

/// The mass of an entry saturates; the sum of all does not.
static void add_mass(poly slot, int64_t mass) {
    gcdmass += mass;
    int64_t sum = slot->exp + mass;
    slot->exp = sum > INT32_MAX ? INT32_MAX : static_cast<int32_t>(sum);
}

static GcdEntry* new_entry(const Pair& p) {
    poly lo = nullptr, hi = nullptr, slot = nullptr;
    poly_assign(p.lo, &lo);
    poly_assign(p.hi, &hi);
    new_term(&slot, 0, hi);
    auto* e = pool_pop<&GcdEntry::next>(entry_garb, nullptr);
    *e = {bucket[p.index], lo, slot, p.level};
    bucket[p.index] = e;
    add_mass(slot, simple_poly_mass(lo) + simple_poly_mass(hi));
    return e;
}

void gcdhash(poly u, poly v, polyptrr gcdp, polypt pt) {
    bring_up_to_date();
    Pair p = pair_of(u, v, pt);
    GcdEntry* e = find(p);
    if (e == nullptr) {
        e = new_entry(p);
        if (!gcd_stash_has_room()) purge_gcd_stash(p.index);
    }
    *gcdp = e->slot;
}

poly gcd_stash_known(poly u, poly v, polypt pt) {
    bring_up_to_date();
    GcdEntry* e = find(pair_of(u, v, pt));
    return e == nullptr ? nullptr : e->slot->next;
}

void gcd_stash_store(poly slot, poly g) {
    if (slot->next != nullptr) return;
    poly_assign(g, &slot->next);
    add_mass(slot, simple_poly_mass(slot->next));
}

void gcd_stash_forget(poly u, poly v, polypt pt) {
    bring_up_to_date();
    GcdEntry* e = find(pair_of(u, v, pt));
    if (e == nullptr || e->slot->next == nullptr) return;
    int64_t mass = simple_poly_mass(e->slot->next);
    gcdmass -= mass;
    e->slot->exp = e->slot->exp > mass ? static_cast<int32_t>(e->slot->exp - mass) : 0;
    free_poly(&e->slot->next);
}

/// Discards the chain behind *link.
static void cut_chain(GcdEntry** link) {
    while (*link != nullptr) {
        GcdEntry* e = *link;
        *link = e->next;
        discard(e);
    }
}

void purge_gcd_stash(int32_t keep) {
    if (polygcd_stack_depth > 0) return;
    int64_t sum = 0;
    for (int32_t i = 0; i < k_gcd_buckets; i++) {
        if (i != keep && bucket[i] != nullptr) cut_chain(&bucket[i]->next);
        for (GcdEntry* e = bucket[i]; e != nullptr; e = e->next) sum += e->slot->exp;
    }
    for (int32_t i = 0; i < k_gcd_buckets && sum > initial_memory / 3 * 2; i++) {
        if (i == keep) continue;
        for (GcdEntry* e = bucket[i]; e != nullptr; e = e->next) sum -= e->slot->exp;
        cut_chain(&bucket[i]);
    }
    gcdmass = sum < 0 ? 0 : sum;
}

// ---- levels of use -------------------------------------------------------------------------------------

void init_gcd_stash() {
    if (lookupgcd < INT16_MAX) lookupgcd++;
    gcd_stash_level = lookupgcd;
    if (lookupgcd != 1) return;
    bring_up_to_date();
    prev_modulus = -1;
}

void pop_gcd_stash() {
    if (lookupgcd > INT16_MIN) lookupgcd--;
    gcd_stash_level = lookupgcd;
    if (lookupgcd == 0) free_gcd_stash();
}

void free_gcd_stash() {
    lookupgcd = gcd_stash_level = 0;
    if (modularmode && made_for == setting_in_force()) {
        prev_modulus = modulus;
        return;
    }
    prev_modulus = -1;
    empty_table();
}

// ---- what stands there ---------------------------------------------------------------------------------

/// An upper bound of the chain p and all below it: numbers of another ring than the one in force may have
/// digits.
static int64_t bytes_of(const polynode* p) {
    int64_t sum = 0;
    for (; p != nullptr; p = p->next) {
        sum += polynodesize;
        if (p->numb)
            sum += numbersize + int64_t{numnodesize} * p->ncoef->size;
        else
            sum += bytes_of(p->pcoef);
    }
    return sum;
}

void walk_gcd_stash(void (*on_entry)(), void (*on_poly)(const polynode*)) {
    auto visit = [&](const GcdEntry* e) {
        for (; e != nullptr; e = e->next) {
            on_entry();
            on_poly(e->lo);
            on_poly(e->slot);  // with both polynomials that it holds
        }
    };
    for (const GcdEntry* head : bucket) visit(head);
    visit(retired);
}

static int64_t walked_bytes;

int64_t mass_gcd_stash() {
    walked_bytes = 0;
    walk_gcd_stash([] { walked_bytes += sizeof(GcdEntry); },
                   [](const polynode* p) { walked_bytes += bytes_of(p); });
    return walked_bytes;
}
}  // namespace tolvex
