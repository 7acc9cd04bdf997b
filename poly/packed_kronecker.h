#pragma once
/// poly/packed_kronecker.h: products of crowded boxes by one long product.
///
/// Purpose    with keys as exponents of one variable, a polynomial of many levels is one of a single level;
///            its value at a power of two is one integer. Residues go to the product of arrays, integers to
///            the product of limb arrays, both of which have transforms.
///            Source: L. Kronecker 1882; A. Schoenhage 1982.
/// Invariant  keys are places in a box (weights of mixed radix), falling from the first term on.
/// Ownership  operands are only read; all arrays are scratch of the operation.
#include "numbers/limbs.h"
#include "poly/packed_form.h"
namespace tolvex {
struct PackedOperand {
    const uint64_t* keys;
    const number* const* numbers;
    int64_t terms;
    int32_t digits;  // of the longest number

    int64_t extent() const { return static_cast<int64_t>(keys[0]) + 1; }
};
/// Bits of the longest number.
int64_t kronecker_bits(const PackedOperand& p);
/// Magnitude of the value at 2^(64 width), extent() * width limbs with leading zeros, in fresh scratch;
/// *negative: its sign. Every number has less than 64 width bits.
limb* kronecker_value(const PackedOperand& p, int64_t width, bool* negative);
/// The way back: every place of r becomes its coefficient in two's complement. A negative one has borrowed
/// from the place above.
void kronecker_restore(limb* r, int64_t places, int64_t width);
/// True if one long product is likely to be faster than all products of terms.
bool kronecker_pays(const PackedOperand& n, const PackedOperand& m);
/// The product as a tree, from a box of so many slots. n and m may have the same keys: then it squares.
poly kronecker_product(const PackedPlan& plan, const int64_t* weight, int64_t slots, const PackedOperand& n,
                       const PackedOperand& m);
}  // namespace tolvex
