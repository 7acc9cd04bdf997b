#pragma once
/// numbers/data_files.h: the nine files of the data directory, one reader each.
///
/// Raises     "can't find ..." and "... file is damaged" through tolvex_error, which ends the process while
///            `starting_up` is set.
#include "numbers/number.h"

#include <cstdio>
namespace tolvex {
inline constexpr int32_t k_messages = 376, k_message_length = 66;
inline constexpr int32_t k_builtin_rows = 110;
struct messarray {
    char mess[k_messages][k_message_length];
};
extern messarray erp;                        // message k is at index k - 1
extern char builtin[k_builtin_rows][2][11];  // name and target of each built-in, row = id
inline int32_t numbuiltins = 0;              // index of the last used row
extern number two_28[130];                   // (2^28)^(i+1) as decimal chains
inline constexpr int32_t k_tabulated_factorials = 22;
extern int32_t factnum[k_tabulated_factorials];
extern number facts[k_tabulated_factorials];  // factorials of factnum, chains
inline constexpr int32_t k_binoms = 1900;
extern imptr binom[k_binoms];
extern FILE* chdat;              // stays open
inline boolean starting_up = 1;  // writers: main

/// Reads all files from `directory`, which ends in "/".
void initialize(const char* directory);
}  // namespace tolvex
