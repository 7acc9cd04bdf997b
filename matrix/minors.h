#pragma once
/// matrix/minors.h: determinants by expansion, for small blocks.
///
/// Purpose    no division takes place, so that any commutative ring will do. A minor is told by its rows, the
///            last ones of the block, and the set of its columns; each is computed once.
///            Cost: s 2^(s - 1) products for s dense rows; far fewer where elements are 0.
/// Ownership  the block is only read.
/// Raises     poll_interrupt: minors that are under way then are lost if the computation is given up.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_most_block_rows = 40;
/// *det := the determinant of the s by s block whose element (r, c), from 0, is block[r + c * stride];
/// 1 <= s <= 40. What *det held is given back.
void small_determ(const quoly* block, int64_t stride, int32_t s, quolyptr det);
}  // namespace tolvex
