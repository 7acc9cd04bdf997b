#pragma once
// Arithmetic of the judge's own: a field large enough for points to prove something, into which the numbers
// of the ring in force map. Nothing here is shared with the program but the records of numbers.
#include "numbers/number.h"

#include <cstdint>
#include <random>
#include <vector>
namespace tolvex::test {
/// Elements are words: residues of a prime, or logarithms to a generator (0 stands for zero, i + 1 for g^i).
class JudgeField {
  public:
    /// The field for the ring in force: Z maps into the residues modulo 2^61 - 1, Z/p and GF(2^8) into an
    /// extension with thousands of elements where they are small. Modulo a composite it is the ring itself:
    /// sums and products alone.
    static const JudgeField& of_ring();
    uint64_t size() const { return q; }
    uint64_t add(uint64_t a, uint64_t b) const;
    uint64_t neg(uint64_t a) const;
    uint64_t mul(uint64_t a, uint64_t b) const;
    uint64_t inverse(uint64_t a) const { return power(a, q - 2); }
    uint64_t power(uint64_t a, uint64_t e) const;
    uint64_t of_number(const number* n) const;
    uint64_t random_unit(std::mt19937_64& rng) const;

  private:
    uint64_t q = 0;  // elements
    uint32_t p = 0;  // characteristic of a field of logarithms; 0: residues modulo q
    uint64_t minus_one = 0;
    std::vector<uint32_t> zech;     // logarithm of 1 + g^i, q where that is zero
    std::vector<uint32_t> of_word;  // the element that a number of the ring stands for
    void tabulate(const std::vector<uint32_t>& powers, uint32_t characteristic);
    static JudgeField residues(uint64_t modulus);
    static JudgeField extension(uint32_t prime);
    static JudgeField table_field(int32_t elements);
};
}  // namespace tolvex::test
