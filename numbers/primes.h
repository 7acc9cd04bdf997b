#pragma once
/// numbers/primes.h: primality of words and the prime tables.
///
/// Purpose    tests by division and by strong pseudoprimes; tables that start-up reads
///            (numbers/data_files.h).
/// Invariant  the tables do not change after start-up.
#include "numbers/number.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_small_primes = 1229, k_med_primes = 2466, k_big_primes = 1516, k_lrg_primes = 2000;
inline constexpr int32_t k_primes = 604, k_num_prods = 599, k_invs_prods = 598, k_global_list = 151;
extern int16_t small_prime[k_small_primes];
extern int32_t med_prime[k_med_primes], big_prime[k_big_primes], lrgpme[k_lrg_primes];
extern number prime[k_primes], num_prod[k_num_prods];  // prime: both forms; num_prod: chains
extern int32_t invs_prod[k_invs_prods];
extern int32_t global_list[k_global_list];  // entries 7..157 of small_prime

boolean is_prime(int32_t n);       ///< n below 2 is none
int64_t long_is_prime(int64_t n);  ///< 1 if prime, else the smallest factor; n >= 2
/// The same for top 2^56 + mid 2^28 + low; top below 128.
int64_t longg_is_prime(int32_t top, int32_t mid, int32_t low);
int32_t nextprime(int32_t n);  ///< next odd prime above n; 0: none below 2^31
/// Distinct primes, ascending; returns their count (at most 16).
int32_t prime_factors(int64_t n, int64_t* list);
void set_prime_quotients(int64_t* list, int32_t count, int64_t n);  ///< each p becomes n / p
}  // namespace tolvex
