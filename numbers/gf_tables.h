#pragma once
/// numbers/gf_tables.h: the fields of 2^8 and 2^16 elements.
///
/// Purpose    GF(2^8) is Z/2[x] modulo x^8+x^4+x^3+x+1, elements as bit vectors; GF(2^16) is GF(2^8)[z]
///            modulo z^2+2z+1, the element h z + l encoded 256 h + l, generator 263. Addition is
///            exclusive or.
/// Modes      f256, f2t16 tell which is in force.
#include "numbers/number_modes.h"

#include <cstdint>
namespace tolvex {
extern int16_t f256prod[256][256];
extern int16_t f256sqr[256];  // square roots
extern int16_t f256inv[256];
extern uint16_t f2t16exp[65536], f2t16log[65536], f2t16inv[65536], f2t16sqr[65536];

/// x y in the table field in force. The masks change no element; they keep every index inside its table.
inline int32_t table_mult(uint32_t x, uint32_t y) {
    if (f256) return f256prod[x & 255][y & 255];
    if (x == 0 || y == 0) return 0;
    uint32_t s = static_cast<uint32_t>(f2t16log[x & 65535]) + f2t16log[y & 65535];
    return f2t16exp[s > 65534 ? s - 65535 : s];
}
}  // namespace tolvex
