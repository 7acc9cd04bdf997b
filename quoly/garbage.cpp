#include "quoly/garbage.h"

#include "poly/poly.h"

#include <cinttypes>
#include <cstdio>
namespace tolvex {
namespace {
constexpr int64_t k_no_cap = INT64_MAX;

/// Bytes on the four main lists, each counted up to its cap.
int64_t main_lists(int64_t nums, int64_t ims, int64_t polys, int64_t quolys) {
    return pool_length<&numnode::next>(numhead, nums) * numnodesize +
           pool_length<&number::imag>(imhead, ims) * numbersize +
           pool_length<&polynode::next>(polygarb, polys) * polynodesize +
           pool_length<&quolynode::next>(quolygarb, quolys) * quolysize;
}

GarbageSource sources[static_cast<int32_t>(GarbageRow::count)] = {};
int64_t (*gcd_stash_bytes)() = nullptr;

/// The report in the making.
struct Report {
    bool list;      // print each record too
    int64_t bytes;  // so far
};

// A free record is poisoned in the checked build; these look at it all the same.
[[gnu::no_sanitize_address]] void list_digits() {
    for (numptr p = numhead; p != nullptr; p = p->next) printf("%d\n", p->value);
}
[[gnu::no_sanitize_address]] void list_exponents() {
    for (poly p = polygarb; p != nullptr; p = p->next) printf("%d\n", p->exp);
}
[[gnu::no_sanitize_address]] void list_names() {
    for (nameptr p = name_garb; p != nullptr; p = p->next) {
        tokentipe name = p->let;
        printf("%s\n", tok_text(name));
    }
}

/// A line that always stands, with the size of the record.
void main_row(Report& report, const char* label, int64_t count, int64_t record_bytes) {
    printf("%s count: %" PRId64 ", %" PRId64 "\n", label, count, record_bytes);
    report.bytes += count * record_bytes;
}

/// A line that stands only when there is something to count; size_shown 0: without a size.
void row(Report& report, const char* label, int64_t count, int64_t record_bytes, int64_t size_shown = 0) {
    if (count == 0) return;
    printf("%s count: %" PRId64, label, count);
    if (size_shown != 0) printf(", %" PRId64, size_shown);
    putchar('\n');
    report.bytes += count * record_bytes;
}

void provided_row(Report& report, const char* label, GarbageRow which, int64_t size_shown = 0) {
    const GarbageSource& source = sources[static_cast<int32_t>(which)];
    if (source.count == nullptr) return;
    if (report.list && source.list != nullptr) source.list();
    row(report, label, source.count(), source.record_bytes, size_shown);
}

/// Work arrays: the first one is always kept and not counted.
void work_array_row(Report& report) {
    constexpr int64_t k_bytes_shown = 4000000;
    const GarbageSource& source = sources[static_cast<int32_t>(GarbageRow::work_arrays)];
    int64_t count = source.count != nullptr ? source.count() : 0;
    if (count <= 1) return;
    printf("work arrays: %" PRId64 ", %" PRId64 "\n", count - 1, k_bytes_shown);
    report.bytes += (count - 1) * k_bytes_shown;
}
}  // namespace

int64_t garbsize() { return main_lists(k_no_cap, k_no_cap, k_no_cap, k_no_cap); }
int64_t fast_garbsize() { return main_lists(60001, 100001, 100001, 30001); }
int64_t med_garbsize() { return main_lists(1000001, 1000001, 1000001, 100001); }
int64_t big_garbsize() { return main_lists(1000001, 6000001, 10000001, 0); }

void garbage_provide(GarbageRow which, const GarbageSource& source) {
    sources[static_cast<int32_t>(which)] = source;
}
void garbage_provide_gcd_stash(int64_t (*bytes)()) { gcd_stash_bytes = bytes; }

void garbage(int32_t x) {
    constexpr int64_t k_array_bytes = 104, k_sparse_bytes = 2048;
    Report report = {x == 'G', 0};
    if (report.list) list_digits();
    main_row(report, "num", pool_length<&numnode::next>(numhead, k_no_cap), numnodesize);
    main_row(report, "im", pool_length<&number::imag>(imhead, k_no_cap), numbersize);
    provided_row(report, "var", GarbageRow::vars);
    provided_row(report, "array", GarbageRow::arrays, k_array_bytes);
    if (report.list) list_names();
    row(report, "name", pool_length<&namenode::next>(name_garb, k_no_cap), sizeof(namenode));
    if (report.list) list_exponents();
    main_row(report, "poly", pool_length<&polynode::next>(polygarb, k_no_cap), polynodesize);
    main_row(report, "quoly", pool_length<&quolynode::next>(quolygarb, k_no_cap), quolysize);
    provided_row(report, "sparse", GarbageRow::sparse_rows, k_sparse_bytes);
    provided_row(report, "colm", GarbageRow::colms);
    provided_row(report, "matrix col", GarbageRow::matrix_cols);
    row(report, "poly pointer", pool_length<&polydata::next>(pt_garb, k_no_cap), sizeof(polydata));
    provided_row(report, "form node", GarbageRow::forms);
    provided_row(report, "cond expr", GarbageRow::conds);
    work_array_row(report);
    int64_t system = size_data_strucs + (gcd_stash_bytes != nullptr ? gcd_stash_bytes() : 0);
    printf("total garbage: %" PRId64 "\n", report.bytes);
    printf("system data size: %" PRId64 "\n", system);
    printf("total size: %" PRId64 "\n", system + report.bytes);
}
}  // namespace tolvex
