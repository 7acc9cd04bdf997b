#include "numbers/random_num.h"

#include "numbers/num_assign.h"
#include "numbers/residue.h"

#include <cstdlib>
#include <ctime>
namespace tolvex {
int32_t rand_word() { return static_cast<int32_t>(random()); }

int32_t rand_below(int32_t n) {
    if (n <= 1) return 0;
    return static_cast<int32_t>(static_cast<int64_t>(random()) * n >> 31);
}

void randomize(boolean clocked, imptr numer) {
    constexpr uint64_t k_mask = 0x0fffffff;  // what is left of 0x8fffffff without the sign bit
    int32_t word = rand_word();
    if (clocked)
        word = static_cast<int32_t>((static_cast<uint64_t>(clock()) + static_cast<uint64_t>(word)) & k_mask);
    setvalue_any(modularmode ? residue_of_int(word) : word, numer);
}
}  // namespace tolvex
