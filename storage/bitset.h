#pragma once
/// storage/bitset.h: sets of small integers in 16-bit words.
///
/// Purpose    the token classes of the language: 16 words, 256 members.
/// Invariant  member e lives in word count - e/16 - 1, bit e mod 16: the word order is reversed.
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
using PSet_BigSet = uint16_t[16];
void PSet_Init(uint16_t* s, int32_t n);            ///< the empty set, of n words
void PSet_Set(uint16_t* s, int32_t n, int32_t e);  ///< adds e
/// Adds a to b; nothing if a exceeds b.
void PSet_SetRange(uint16_t* s, int32_t n, int32_t a, int32_t b);
/// False for a negative e and beyond the last member.
boolean PSet_Test(const uint16_t* s, int32_t n, int32_t e);
}  // namespace tolvex
