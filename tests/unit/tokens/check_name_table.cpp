// The tables of names against a plain list, while they spread.
#include "language/tokens/name_table.h"

#include <gtest/gtest.h>
#include <vector>
namespace tolvex {
namespace {
struct Named {
    tokentipe let;
    int32_t age;
    Named* next;
};
using Table = NameTable<Named, &Named::let, k_variable_buckets>;

tokentipe name_of(int32_t i) {
    tokentipe name = {};
    char text[24];
    snprintf(text, sizeof text, "n%d", i);
    tok_set(name, text);
    name.address = hash(name.name, k_variable_buckets);
    return name;
}

TEST(NameTable, NewestOfANameIsFoundWhileTheTableSpreads) {
    constexpr int32_t k_names = 40000;
    static Table table;
    std::vector<Named> records(2 * k_names);
    for (int32_t i = 0; i < 2 * k_names; i++) {
        records[i] = {name_of(i % k_names), i, nullptr};
        table.push(&records[i]);
        int32_t probe = i * 7 % (i + 1);
        int32_t newest = probe % k_names + (probe % k_names + k_names <= i ? k_names : 0);
        ASSERT_EQ(*table.link_of(name_of(probe % k_names)), &records[newest]) << i;
    }
    ASSERT_EQ(*table.link_of(name_of(k_names)), nullptr);
    // when the newest goes, the older one is seen
    for (int32_t i = k_names; i < 2 * k_names; i++) {
        table.take_off(table.link_of(records[i].let));
        ASSERT_EQ((*table.link_of(records[i].let))->age, i - k_names);
    }
    ASSERT_EQ(table.entries, k_names);
    table.clear();
    for (Named* chain : table) ASSERT_EQ(chain, nullptr);
}

TEST(NameTable, SpreadingKeepsTheOrderOfAChain) {
    static Table table;
    std::vector<Named> records(30000);
    for (int32_t i = 0; i < 30000; i++) {
        records[i] = {name_of(i), i, nullptr};
        table.push(&records[i]);
    }
    ASSERT_GT(table.spread, 1);
    int64_t seen = 0;
    for (int32_t b = 0; b < k_variable_buckets; b++) {
        for (Named** chain = table.bucket(b); chain < table.bucket(b + 1); chain++) {
            for (const Named* r = *chain; r != nullptr; r = r->next) {
                seen++;
                ASSERT_EQ(r->let.address, b);
                if (r->next != nullptr) {
                    ASSERT_GT(r->age, r->next->age);
                }
            }
        }
    }
    ASSERT_EQ(seen, 30000);
}
}  // namespace
}  // namespace tolvex
