#include "numbers/gf_tables.h"
namespace tolvex {
int16_t f256prod[256][256];
int16_t f256sqr[256];
int16_t f256inv[256];
uint16_t f2t16exp[65536], f2t16log[65536], f2t16inv[65536], f2t16sqr[65536];
}  // namespace tolvex
