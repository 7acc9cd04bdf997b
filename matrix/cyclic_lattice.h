#pragma once
/// matrix/cyclic_lattice.h: the Hermite form of a lattice that one congruence describes.
///
/// Purpose    x lies in the lattice of the columns of A if A^-1 x has integer entries; then z x = 0 modulo
///            det A for z = u adj(A), whatever the row u. If the entries of z and det A have no common factor
///            that says it all: both lattices have the index |det A|. For u at random that is the rule when
///            the group of all vectors modulo the lattice is cyclic, as it is for most matrices.
///            Cost: n^3 / 3 products of words for each 31 bits of Hadamard's bound.
/// Raises     poll_interrupt: only scratch memory is under way then.
#include "matrix/int_grid.h"
namespace tolvex {
struct CyclicLattice {
    IntEntry index;  // |det A|
    IntEntry* z;     // one entry a row, 0..index - 1
    bool cyclic;     // z and the index have no common factor: z describes the lattice
};
/// a is square and not singular. In scratch memory of the caller.
CyclicLattice cyclic_lattice(const IntGrid& a);
/// The Hermite form, square, of a lattice that is cyclic, with an index above 1.
IntGrid cyclic_hermite(const CyclicLattice& l, int32_t n);
}  // namespace tolvex
