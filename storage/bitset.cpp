#include "storage/bitset.h"
namespace tolvex {
void PSet_Init(uint16_t* s, int32_t n) {
    for (int32_t i = 0; i < n; i++) s[i] = 0;
}

void PSet_Set(uint16_t* s, int32_t n, int32_t e) {
    s[n - e / 16 - 1] = static_cast<uint16_t>(s[n - e / 16 - 1] | (1u << (e % 16)));
}

void PSet_SetRange(uint16_t* s, int32_t n, int32_t a, int32_t b) {
    for (int32_t e = a; e <= b; e++) PSet_Set(s, n, e);
}

boolean PSet_Test(const uint16_t* s, int32_t n, int32_t e) {
    if (e < 0 || e / 16 >= n) return 0;
    return (s[n - e / 16 - 1] >> (e % 16)) & 1;
}
}  // namespace tolvex
