// Arrays, described on the terminal and written out in a saved session.
#include "language/array_display.h"
#include "language/language_modes.h"
#include "matrix/matrix_modes.h"
#include "numbers/number_modes.h"
#include "session/listing.h"
#include "session/listing_sort.h"
#include "session/plain_display.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cinttypes>
namespace tolvex {
static constexpr int32_t k_most_of_a_name = 9;  // arrays of one name that a display describes
// A display of more arrays than can be sorted.
static constexpr int32_t k_most_of_a_bucket = 20;
static constexpr int32_t k_most_described = 1500;

/// The array of that name at this place among those of the name, 0 the newest; nil if there is none.
static arrptr nth_array(const tokentipe& name, int32_t place) {
    arrptr a = *arr_store.chain_of(name);
    for (; a != nullptr; a = a->next)
        if (same_name(a->name, name) && place-- == 0) return a;
    return nullptr;
}

static int64_t count_arrays() {
    int64_t n = 0;
    for (arrptr a : arr_store)
        for (; a != nullptr; a = a->next) n++;
    return n;
}

/// All arrays, the newest or the oldest of a name first. In scratch memory of the caller's mark.
static ListedName* gather_arrays(int64_t n, NameOrder order) {
    auto* entries = scratch_array<ListedName>(maxx64(n, 1));
    int64_t k = 0;
    for (arrptr a : arr_store)
        for (; a != nullptr; a = a->next) entries[k++] = {a->name, 0, 0};
    sort_names(entries, n, order);
    return entries;
}

// ---- the display ---------------------------------------------------------------------------------------

/// One line: the shape of the array.
static void arrdescribe(arrptr shown) {
    const arrnode* a = array_itself(shown);
    const char* name = tok_text(shown->name);
    if (a->linear) {
        printf(" [%s] has %lli elements", name, static_cast<long long>(a->sizearr));
    } else {
        printf(" [%s] is %d by %lli", name, a->rows, static_cast<long long>(columns_of(a)));
    }
    if (a->spar != nullptr)
        printf(", sparse, %lli entries", static_cast<long long>(sparse_entries(a->spar, a->rows)));
    fputs(is_alias(shown) ? ", array parameter.\n" : ".\n", stdout);
}

static void describe_sorted(const ListedName* entries, int64_t n) {
    for (int64_t i = 0; i < n; i++) {
        poll_interrupt();
        if (entries[i].place < k_most_of_a_name) {
            arrptr a = nth_array(entries[i].name, entries[i].place);
            if (a != nullptr) arrdescribe(a);
        } else if (entries[i].place == k_most_of_a_name) {
            int64_t more = 0;
            for (int64_t k = i; k < n && same_name(entries[k].name, entries[i].name); k++) more++;
            printf(" ... %d more with this name.\n", static_cast<int32_t>(more));
        }
    }
}

/// The first ones of each bucket. No level opens meanwhile: what is shown is bounded.
static void describe_buckets(int64_t n) {
    int32_t described = 0;
    for (int32_t i = 0; i < k_variable_buckets; i++) {
        int32_t here = 0, more = 0;
        for (arrptr* chain = arr_store.bucket(i); chain < arr_store.bucket(i + 1); chain++) {
            for (arrptr a = *chain; a != nullptr; a = a->next) {
                if (here < k_most_of_a_bucket && described < k_most_described) {
                    arrdescribe(a);
                    here++;
                    described++;
                } else {
                    more++;
                }
            }
        }
        if (more > 0 && described < k_most_described) printf(" ... %d more.\n", more);
    }
    if (described == k_most_described) fputs("   ....\n", stdout);
    printf(" There are %d arrays.\n   %d were not described here.\n", static_cast<int32_t>(n),
           static_cast<int32_t>(n - described));
}

void list_arrays() {
    int64_t n = count_arrays();
    if (n > k_sorted_listing) {
        describe_buckets(n);
        return;
    }
    ScratchMark mark = scratch_mark();
    describe_sorted(gather_arrays(n, NameOrder::newest_first), n);
    scratch_release(mark);
}

// ---- the saved form ------------------------------------------------------------------------------------

static void write_element(FILE* file, const quolynode* q) {
    size_t length;
    const char* text = element_text(q, &length);
    fwrite(text, 1, length, file);
}

/// [(1, 2, 3)]: the elements of an array with one subscript.
static void write_column(FILE* file, const ArrOperand& v) {
    fputs("[(", file);
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_interrupt();
        if (k > 0) fputs(", ", file);
        write_element(file, elements_of(v)[k]);
    }
    fputs(")]", file);
}

/// [[1, 2]
/// [3, 4]]
static void write_rows(FILE* file, const ArrOperand& v) {
    for (int32_t r = 0; r < v.facts.rows; r++) {
        fputs(r == 0 ? "[[" : "\n[", file);
        for (int64_t k = r; k < v.facts.arrsize; k += v.facts.rows) {
            poll_interrupt();
            if (k > r) fputs(", ", file);
            write_element(file, elements_of(v)[k]);
        }
        putc_unlocked(']', file);
    }
    putc_unlocked(']', file);
}

/// [[1, [2, 5], [4, -1]],
/// [3, [1, 7]]]
static void write_sparse_rows(FILE* file, const ArrOperand& v) {
    bool first = true;
    SparseWalk w = walk_sparse(v.spar, v.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        poll_interrupt();
        if (*t == nullptr) continue;
        fprintf(file, "%s[%" PRId64, first ? "[" : ",\n", user_number(w.row));
        first = false;
        for (const colnode* p = *t; p != nullptr; p = p->next) {
            poll_interrupt();
            fprintf(file, ", [%" PRId64 ", ", user_number(p->coord - 1));
            write_element(file, p->val);
            putc_unlocked(']', file);
        }
        putc_unlocked(']', file);
    }
    putc_unlocked(']', file);
}

static void write_elements(FILE* file, arrptr a) {
    ArrOperand v;
    if (!begin_operand(v)) return;
    borrow_array(v, a);
    fprintf(file, "[%s] := ", tok_text(a->name));
    if (is_sparse(v))
        write_sparse_rows(file, v);
    else if (a->linear)
        write_column(file, v);
    else
        write_rows(file, v);
    fputs(";\n", file);
    end_operand(v);
}

/// The statements that make the array again.
static void do_array_p(FILE* file, arrptr a) {
    if (a->ring != modulus) {
        printf(" Warning: [%s] stands in another ring and has not been saved.\n", tok_text(a->name));
        return;
    }
    fprintf(file, "Array %s[%d", tok_text(a->name), a->rows);
    if (!a->linear) fprintf(file, ", %lli", static_cast<long long>(columns_of(a)));
    fprintf(file, "]%s;\n", a->spar != nullptr ? " Sparse" : "");
    if (a->spar == nullptr || sparse_entries(a->spar, a->rows) > 0) write_elements(file, a);
}

void save_arrays(FILE* file) {
    ScratchMark mark = scratch_mark();
    int64_t n = count_arrays();
    const ListedName* entries = gather_arrays(n, NameOrder::oldest_first);
    begin_plain_residues();
    for (int64_t i = 0; i < n; i++) {
        poll_interrupt();
        arrptr a = nth_array(entries[i].name, entries[i].place);
        if (a != nullptr && !is_alias(a)) do_array_p(file, a);
    }
    end_plain_residues();
    scratch_release(mark);
}
}  // namespace tolvex
