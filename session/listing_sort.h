#pragma once
/// session/listing_sort.h: names of a listing in order.
///
/// Ownership  the entries are the caller's; names point into the tables.
#include "language/tokens/token.h"

#include <cstdint>
namespace tolvex {
inline constexpr int64_t k_sorted_listing = 1000;  // longer displays stand in the order of the table

/// An entry of a table: its name, its place among the entries of that name, 0 the newest, and its place in
/// the table.
struct ListedName {
    tokentipe name;
    int32_t place;
    int32_t at;
};
enum class NameOrder : int32_t { newest_first, oldest_first, table };
/// Entries as the tables have them, the newest of a name first: gets the places and puts them in order, by
/// name but for `table`. Cost n log n.
void sort_names(ListedName* entries, int64_t n, NameOrder order);
/// The order of a display of n entries.
inline NameOrder display_order(int64_t n) {
    return n > k_sorted_listing ? NameOrder::table : NameOrder::newest_first;
}
}  // namespace tolvex
