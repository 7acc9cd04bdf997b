#pragma once
/// storage/types.h: the plain types that every record uses, and the smallest word helpers.
///
/// Purpose    `boolean` is the truth value of records and globals: 32 bits, by layout.
#include <cstdint>
namespace tolvex {
using boolean = int32_t;

inline int32_t minn(int32_t a, int32_t b) { return a < b ? a : b; }
inline int32_t maxx(int32_t a, int32_t b) { return a > b ? a : b; }
inline int64_t maxx64(int64_t a, int64_t b) { return a > b ? a : b; }
inline int16_t Iminn(int16_t a, int16_t b) { return a < b ? a : b; }
/// True if exactly one bit of n is set.
inline boolean power_of_two(uint32_t n) { return n != 0 && (n & (n - 1)) == 0; }
}  // namespace tolvex
