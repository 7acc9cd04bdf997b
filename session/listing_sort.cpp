#include "session/listing_sort.h"

#include <cstdlib>
#include <cstring>
namespace tolvex {
static int by_table(const void* a, const void* b) {
    return static_cast<const ListedName*>(a)->at - static_cast<const ListedName*>(b)->at;
}

static int by_name(const void* a, const void* b) {
    auto *x = static_cast<const ListedName*>(a), *y = static_cast<const ListedName*>(b);
    int order = memcmp(x->name.name, y->name.name, sizeof(nametype));
    return order != 0 ? order : by_table(a, b);
}

static int by_name_oldest_first(const void* a, const void* b) {
    auto *x = static_cast<const ListedName*>(a), *y = static_cast<const ListedName*>(b);
    int order = memcmp(x->name.name, y->name.name, sizeof(nametype));
    return order != 0 ? order : by_table(b, a);
}

static void sort(ListedName* entries, int64_t n, int (*compare)(const void*, const void*)) {
    qsort(entries, static_cast<size_t>(n), sizeof *entries, compare);
}

void sort_names(ListedName* entries, int64_t n, NameOrder order) {
    // those of one name stand in one bucket, so in the order of their age, but others may stand between them
    for (int64_t i = 0; i < n; i++) entries[i].at = static_cast<int32_t>(i);
    sort(entries, n, by_name);
    for (int64_t i = 0, first = 0; i < n; i++) {
        if (!same_name(entries[i].name, entries[first].name)) first = i;
        entries[i].place = static_cast<int32_t>(i - first);
    }
    if (order == NameOrder::oldest_first) sort(entries, n, by_name_oldest_first);
    if (order == NameOrder::table) sort(entries, n, by_table);
}
}  // namespace tolvex
