#pragma once
/// tests/support/random_poly.h: ground rings and random values for tests of polynomial code and what lies
/// above.
///
/// Ownership  every poly returned belongs to the caller.
/// Modes      use_ring and use_integers set the whole ring state; a test leaves the integers behind
///            (use_integers) when it ends.
#include "tests/support/support.h"
#if __has_include("poly/poly.h") && !defined(TOLVEX_UP_TO_numbers) && !defined(TOLVEX_UP_TO_tokens) &&       \
                  !defined(TOLVEX_UP_TO_storage)
#include "poly/poly.h"

#include <string>
namespace tolvex::test {
void use_integers();
/// Z/m for 2 <= m <= 2147483646, the fields GF(2^8) and GF(2^16) for 256 and 65536 with `table_field`; 0
/// means the integers.
void use_ring(int32_t m, bool table_field = false);
/// One ground ring of the lists below.
struct Ring {
    int32_t modulus;  // 0: the integers
    bool table_field;
    const char* name;
};
/// Z, prime fields small and large, composite moduli, both table fields: the rings in which identities are
/// tried.
extern const Ring all_rings[];
extern const int all_ring_count;
inline void use_ring(const Ring& r) { use_ring(r.modulus, r.table_field); }
/// The ring of that round, in force from now on with six variables.
const Ring& pick_ring(int round);

/// A polynomial that is freed at the end of a test body; tests raise no errors while one is alive.
struct PolyGuard {
    poly p = nullptr;
    PolyGuard() = default;
    explicit PolyGuard(poly q) : p(q) {}
    PolyGuard(const PolyGuard&) = delete;
    PolyGuard& operator=(const PolyGuard&) = delete;
    ~PolyGuard();
    operator poly() const { return p; }
    polyptrr operator&() { return &p; }
};

/// How the numbers of a random polynomial look; in modular mode every style gives residues.
enum class Coefs { small, digit, two_digits, huge, ones, corners };
/// What a random polynomial looks like.
struct Shape {
    int32_t levels;   // variables that may occur, from level 1
    int32_t terms;    // terms at most
    int32_t max_exp;  // exponents min_exp..max_exp
    Coefs coefs = Coefs::small;
    int32_t min_exp = 0;  // below 0 only under laurent
};
/// A polynomial in normal form with at most `terms` terms; now and then a number, a single term, a polynomial
/// without some of its variables.
poly random_poly(Rng& rng, const Shape& shape);
poly random_poly(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp, Coefs coefs = Coefs::small);
poly random_nonzero_poly(Rng& rng, const Shape& shape);
poly random_nonzero_poly(Rng& rng, int32_t levels, int32_t terms, int32_t max_exp,
                         Coefs coefs = Coefs::small);
/// Exactly the dense polynomial of one level with all exponents 0..degree, coefficients not 0.
poly dense_poly(Rng& rng, int32_t degree, Coefs coefs = Coefs::small);
/// A random number of the ring in force, of the given style; *x is fresh or owns a value in this mode.
void random_number(Rng& rng, Coefs coefs, imptr x);
int32_t random_int(Rng& rng, int32_t low, int32_t high);  ///< low..high inclusive
poly copy_of(const polynode* p);
/// A term coefficient * x1^e[0] * x2^e[1] ... of `levels` levels as a polynomial; the number is a word of the
/// ring in force.
poly term_poly(int64_t coefficient, const int32_t* exps, int32_t levels);
/// The polynomial of a text such as "3*x^2*y - y + 5" or "x^-1 + 2", variables x, y, z, t, u, v at levels 1
/// to 6, decimal coefficients of up to 18 digits. For fixed cases and for messages.
poly poly_of(const char* text);
std::string text_of(const polynode* p);
/// Live records of the pools that polynomials use; 0 outside the checked build.
int64_t live_records();
/// Makes `levels` variables x1, x2, ... (polynames, number_polys), taking away those that stand there.
void use_variables(int32_t levels);
/// True if n is a multiple of d.
bool divides(poly d, poly n);

#ifndef TOLVEX_NO_GTEST
/// A test with the integers in force at first and last, six variables, and the count of records unchanged at
/// the end.
class PolyTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
    int64_t records_before = 0;  // live records; a test that lets an error lose some counts again
};
#endif
}  // namespace tolvex::test
#endif
