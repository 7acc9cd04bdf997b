#pragma once
/// field/aux_primes.h: the two lists of auxiliary primes of a field over Q.
///
/// Purpose    modulo a first auxiliary prime every modding polynomial of the tower stays irreducible: the
///            tower has a field as image. Modulo a second one each has a root, given the roots below: the
///            tower has images in word fields.
/// Invariant  gcd_data of each field level holds the second primes in falling order with their roots;
///            the same primes on all levels, aux_num of them.
/// Modes      rational mode.
#include "poly/poly.h"
#include "poly/word_field.h"
namespace tolvex {
/// A list while it is made: nothing of the tower changes before it is installed.
struct PrimeList {
    int32_t count;
    int32_t* prime;  // scratch
};
/// The candidate k of the search for first primes, 0..k_first_aux_primes - 1; ascending within three tables.
int32_t first_candidate(int32_t k);
/// A level that is about to be declared: its modding polynomial f stands over the lowest `below` levels of
/// the tower.
struct NewLevel {
    const polynode* f;
    int32_t below;
};
/// Is f irreducible over the tower below modulo the prime p?
bool irreducible_modulo(NewLevel level, int32_t p);
/// The primes of `from`, modulo which the tower below is a field, or (nil) of the first aux_num_1factor
/// candidates, modulo which the whole new tower is one; with a count of those tried, if told.
void find_first_primes(NewLevel level, const PrimeList* from, PrimeList* found, bool shown);

/// *prime and root[h], h = 1.., of the tower for entry k of the second lists.
void roots_of_prime(int32_t k, int32_t* prime, uint32_t* root);
/// The value at root[1..h - 1] of the coefficients of p, and at x for its top variable, that of height h,
/// modulo the prime of the field f. p has chains.
uint32_t value_at_roots(const WordField& f, const polynode* p, int32_t h, const uint32_t* root, uint32_t x);
/// The second lists of a tower while they are made: nothing of the tower changes before they are installed.
struct SecondLists {
    int32_t count, height, room;
    RootPrime* found;  // row h, 1..height, begins at found[h room]; scratch
};
/// For the new tower: searches the primes.
SecondLists make_and_reconcile_gcd_lists(NewLevel level);
/// The same from given pairs of prime and root of the new level; bad ones are dropped.
SecondLists take_gcd_lists(NewLevel level, const RootPrime* pair, int32_t count);
void install_second_lists(const SecondLists& lists);  ///< when the new level is there
void free_gcd_lists();                                ///< of all levels
}  // namespace tolvex
