#pragma once
/// matrix/lattice.h: polynomials in several variables from their values at the points of a lattice.
///
///   degrees (2, 2), total 3:     a_2         the exponents (a_1, a_2) that may occur; the point of each is
///                             2 | * *        (t_1[a_1], t_2[a_2])
///                             1 | * * *
///                             0 | * * *
///                                 0 1 2  a_1
///
/// Purpose    a bound on the total degree leaves far fewer points than the box of the single degrees; values
///            at as many points as there are exponents determine the polynomial all the same, for the set of
///            exponents contains with each one all smaller ones.
///            Cost: per variable two passes over half of the square of its degree, for all lines of the
///            lattice.
///            Source: divided differences along one variable after the other: H. Werner, "Remarks on Newton
///            type multivariate interpolation for subsets of grids", Computing 25 (1980).
/// Ownership  tables lie in scratch memory of the caller's mark.
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_lattice_vars = 32;
struct Lattice {
    int32_t vars;
    int32_t degree[k_lattice_vars];
    int32_t total;
    int64_t count;
    int64_t* size;  // of variable i and budget b, at i (total + 1) + b: the points of the variables from i on
                    // whose exponents have at most the sum b
};
/// The lattice of the exponents up to degree[i] with at most the given sum. False: more than `most` points.
bool make_lattice(Lattice* l, const int32_t* degree, int32_t vars, int64_t total, int64_t most);
inline int64_t lattice_size(const Lattice& l, int32_t var, int32_t budget) {
    return l.size[int64_t{var} * (l.total + 1) + budget];
}
/// The greatest exponent of a variable that is left so much of the total degree.
inline int32_t lattice_reach(const Lattice& l, int32_t var, int32_t budget) {
    return l.degree[var] < budget ? l.degree[var] : budget;
}
/// value[k], the values at the points in lexicographic order of the exponents, become the coefficients in the
/// same order. point[i][a], a = 0..degree[i]: distinct; in a prime field consecutive. Polls: only scratch
/// memory is under way.
void lattice_interpolate(const Lattice& l, const WordField& f, const uint32_t* const* point, uint32_t* value);
}  // namespace tolvex
