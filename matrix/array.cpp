#include "matrix/array.h"

#include "matrix/matrix_modes.h"
#include "quoly/garbage.h"
#include "quoly/quoly_audit.h"
#include "quoly/quoly_basic.h"
#include "storage/audit.h"
#include "storage/failure.h"
#include "storage/memory.h"
#include "storage/scratch.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
namespace tolvex {
// ---- tables --------------------------------------------------------------------------------------------

int32_t fastestlookup(tokentipe& name, arrptr* p) {
    // Names with a capital are those of functions, and in stored lists their addresses are of another table.
    *p = nullptr;
    if (is_upper(tok_char(name))) return -1;
    if (name.address == -1) name.address = hash(name.name, k_variable_buckets);
    arrptr a = *arr_store.link_of(name);
    *p = a;
    return a == nullptr ? -1 : array_itself(a)->start;
}

bool array_seek(tokentipe& name, arrptr* p) {
    fastestlookup(name, p);
    if (*p != nullptr) return true;
    error(Err::undefined_array, tok_text(name));
    return false;
}

void link_array(arrptr a) { arr_store.push(a); }

void unlink_array(arrptr a) {
    arrptr* link = arr_store.chain_of(a->name);
    while (*link != a) link = &(*link)->next;
    arr_store.take_off(link);
}

// ---- elements ------------------------------------------------------------------------------------------

int32_t position_of(const quoly* at) {
    for (int32_t b = 0; b < numblocks; b++) {
        const quoly* first = arp[b]->val;
        if (at >= first && at < first + k_store_block)
            return b * k_store_block + static_cast<int32_t>(at - first);
    }
    return -1;
}

quolyptr dense_slot(const arrnode* a, int32_t k) {
    return a == syst ? &syst_stash[k] : arp_slot(a->start + k);
}

static bool out_of_range(const tokentipe& name) {
    error(Err::index_out_of_range, tok_text(name));
    return false;
}

bool is_place(const arrnode* a, int64_t r, int64_t c, bool two, int64_t* index) {
    r -= addresser;
    c = two ? c - addresser : 0;
    if (r < 0 || c < 0 || (two && r >= a->rows)) return false;
    // a column beyond any array is caught before it is multiplied
    if (c >= a->sizearr || c > INT32_MAX) return false;
    *index = r + c * a->rows;
    return *index < a->sizearr;
}

bool find_place(const arrnode* a, int64_t r, int64_t c, bool two, const tokentipe& name, int64_t* index) {
    return is_place(a, r, c, two, index) || out_of_range(name);
}

quolyptr place_slot(const arrnode* a, int64_t index) {
    if (a->spar == nullptr) return dense_slot(a, static_cast<int32_t>(index));
    int32_t col = column_of_place(a, index);
    colm_ptrptr t = get_sparse_colm(sparse_row(a->spar, row_of_place(a, index)), col);
    return stands_at(t, col) ? &(*t)->val : nullptr;
}

void for_each_element(arrptr a, void (*f)(quolyptr value, void* context), void* context) {
    if (a->spar != nullptr) {
        change_sparse(a->spar, a->rows, f, context);
        return;
    }
    for (int32_t k = 0; k < a->sizearr; k++) {
        quolyptr slot = dense_slot(a, k);
        if (*slot == nullptr) continue;
        f(slot, context);
        if (*slot == nullptr) quoly_set(0, slot);
    }
}

// ---- creation ------------------------------------------------------------------------------------------

static arrptr new_array_record(const tokentipe& let, int64_t r, int64_t c, bool liner) {
    arrptr a = pool_pop<&arrnode::next>(arr_garb, nullptr);
    *a = {};
    a->name = let;
    if (a->name.address < 0 || a->name.address >= k_variable_buckets)
        a->name.address = hash(let.name, k_variable_buckets);
    a->stop = -1;
    a->rows = static_cast<int32_t>(r);
    a->sizearr = r * c;
    a->linear = liner;
    a->ring = modulus;
    return a;
}

/// True if the dimensions are legal as such.
static bool legal_dimensions(int64_t r, int64_t c) {
    if (r >= 1 && c >= 1 && r <= INT32_MAX && c <= INT32_MAX) return true;
    error(Err::index_out_of_range);
    return false;
}

/// Room for n more positions.
static void grow_store(int32_t n) {
    while (numblocks * k_store_block <= endarr + n) {
        auto* block = static_cast<storerec*>(checked_malloc(sizeof(storerec)));
        memset(static_cast<void*>(block), 0, sizeof(storerec));
        arp[numblocks++] = block;
    }
}

bool store_has_room(const arrnode* a, int64_t r, int64_t c) {
    Err fault = Err{};
    int64_t freed = a == nullptr || a->spar != nullptr ? 0 : a->sizearr;
    if (oversize(r, c))
        fault = Err::array_too_large;
    else if (endarr - freed + r * c > k_greatest_position)
        fault = Err::array_store_full;
    if (fault != Err{}) error(fault);
    return fault == Err{};
}

/// The array takes n positions at the end of the store.
static void take_positions(arrptr a, int32_t n) {
    grow_store(n);
    a->start = endarr + 1;
    a->stop = endarr + n;
    endarr += n;
}

arrptr insertarr(const tokentipe& let, int64_t r, int64_t c, bool liner) {
    if (!legal_dimensions(r, c)) return nullptr;
    if (!store_has_room(nullptr, r, c)) return nullptr;
    arrptr a = new_array_record(let, r, c, liner);
    take_positions(a, static_cast<int32_t>(r * c));
    a->time = ++array_time;
    link_array(a);
    return a;
}

/// True if the row tables of a sparse array fit the memory budget.
static bool room_for_rows(int64_t r) {
    if (static_cast<uint64_t>(r / k_rows_a_block) * sizeof(rowarray) <= find_total_available_memory())
        return true;
    error(Err::array_store_full);
    return false;
}

arrptr sparse_create(const tokentipe& let, int64_t r, int64_t c, bool liner, sparseptr chain) {
    if (!legal_dimensions(r, c) || (chain == nullptr && !room_for_rows(r))) return nullptr;
    arrptr a = new_array_record(let, r, c, liner);
    if (chain == nullptr)
        sparse_init(&a->spar, a->rows);
    else
        a->spar = chain;
    a->time = ++array_time;
    link_array(a);
    return a;
}

arrptr new_alias(const tokentipe& let, arrptr of) {
    of = array_itself(of);
    arrptr a = new_array_record(let, of->rows, 0, of->linear);
    a->father = of;
    a->time = -of->time;
    of->aliases++;
    return a;
}

void free_alias(arrptr a) {
    a->father->aliases--;
    pool_push<&arrnode::next>(arr_garb, a);
}

// ---- release -------------------------------------------------------------------------------------------

/// The slots from..last move down to `to`.
static void move_down(int32_t to, int32_t from, int32_t last) {
    while (from <= last) {
        int32_t run = minn(minn(k_store_block - to % k_store_block, k_store_block - from % k_store_block),
                           last - from + 1);
        memmove(static_cast<void*>(arp_slot(to)), arp_slot(from), static_cast<size_t>(run) * sizeof(quoly));
        to += run;
        from += run;
    }
}

/// The store ends at `last`; the slots behind it, which have moved away, are nil.
static void end_store(int32_t last) {
    for (int32_t k = last + 1; k <= endarr; k++) *arp_slot(k) = nullptr;
    endarr = last;
}

/// Positions first..first + n - 1, which are nil, go; the elements behind them and their arrays move down.
static void close_hole(int32_t first, int32_t n, int32_t stamp) {
    bool at_the_end = first + n > endarr;
    move_down(first, first + n, endarr);
    end_store(endarr - n);
    if (at_the_end) return;  // the newest array: none stands behind it
    for (arrptr a : arr_store) {
        for (; a != nullptr; a = a->next) {
            if (a->time < stamp || a->spar != nullptr) continue;
            a->start -= n;
            a->stop -= n;
        }
    }
}

static void free_slots(const arrnode* a) {
    ValueRelease release;
    for (int32_t k = 0; k < a->sizearr; k++) release(dense_slot(a, k));
}

/// Values are given back in the shape that numbers have in their own ring.
void free_elements(arrptr a) {
    boolean shape = lintmode;
    lintmode = a->ring > 0;
    if (a->spar != nullptr)
        free_sparse(&a->spar, a->rows, 1);
    else
        free_slots(a);
    lintmode = shape;
}

void enter_ring(arrptr a) {
    bool sparse = a->spar != nullptr;
    free_elements(a);
    if (sparse) sparse_init(&a->spar, a->rows);
    a->ring = modulus;
}

static void empty_places(arrptr a) {
    for (int32_t i = 0; a->places > 0; i++) {
        if (arrstash[i] != a) continue;
        arrstash[i] = nullptr;
        a->places--;
    }
}

void free_array_of_many(arrptr a) {
    CHECK(!is_alias(a) && a->aliases == 0 && a->lent == 0);
    unlink_array(a);
    free_elements(a);
    empty_places(a);
    pool_push<&arrnode::next>(arr_garb, a);
}

void free_array(arrptr a) {
    bool dense = a->spar == nullptr;
    int32_t first = a->start, n = static_cast<int32_t>(a->sizearr), stamp = a->time;
    free_array_of_many(a);
    if (dense) close_hole(first, n, stamp);
}

static int by_start(const void* a, const void* b) {
    return (*static_cast<const arrptr*>(a))->start - (*static_cast<const arrptr*>(b))->start;
}

void close_holes() {
    ScratchMark mark = scratch_mark();
    auto* dense = scratch_array<arrptr>(arr_store.entries);
    int64_t n = 0;
    for (arrptr a : arr_store)
        for (; a != nullptr; a = a->next)
            if (!is_alias(a) && a->spar == nullptr) dense[n++] = a;
    qsort(dense, static_cast<size_t>(n), sizeof *dense, by_start);
    int32_t end = -1;
    for (int64_t i = 0; i < n; i++) {
        arrptr a = dense[i];
        if (a->start != end + 1) move_down(end + 1, a->start, a->stop);
        a->stop += end + 1 - a->start;
        a->start = end + 1;
        end = a->stop;
    }
    end_store(end);
    scratch_release(mark);
}

void reshape_array(arrptr a, int64_t r, int64_t c, bool liner, sparseptr chain) {
    bool was_sparse = a->stop < a->start;
    if (was_sparse) {
        free_sparse(&a->spar, a->rows, 1);
    } else {
        int32_t first = a->start;
        a->start = endarr + 1;  // behind the hole, like everything that moves
        close_hole(first, static_cast<int32_t>(a->sizearr), a->time);
    }
    a->rows = static_cast<int32_t>(r);
    a->sizearr = r * c;
    a->linear = liner;
    a->ring = modulus;
    a->time = ++array_time;
    a->spar = chain;
    a->start = 0;
    a->stop = -1;
    if (chain == nullptr) take_positions(a, static_cast<int32_t>(a->sizearr));
}

void fill_sparse(arrptr a) {
    int32_t first = a->start, n = static_cast<int32_t>(a->sizearr);
    sparseptr chain = nullptr;
    sparse_init(&chain, a->rows);
    for (int32_t start_of_column = n - a->rows; start_of_column >= 0; start_of_column -= a->rows) {
        SparseWalk w = walk_sparse(chain, a->rows);
        while (colm_ptrptr head = next_row(w))
            put_in_front(head, start_of_column / a->rows + 1, arp_slot(first + start_of_column + w.row));
    }
    a->spar = chain;
    a->start = 0;
    a->stop = -1;
    close_hole(first, n, a->time);
}

// ---- the system array ----------------------------------------------------------------------------------

arrptr clear_syst() {
    static arrnode record;
    if (syst == nullptr) {
        syst_stash =
            static_cast<workptr>(checked_malloc(static_cast<size_t>(k_greatest_array) * sizeof(quoly)));
        record = {};
        tok_set(record.name, "<");
        syst = &record;
    } else {
        free_elements(syst);
    }
    syst->sizearr = 0;
    syst->stop = -1;
    syst->ring = modulus;
    return syst;
}

// ---- the array of arrays -------------------------------------------------------------------------------

static bool legal_place(int64_t i) {
    if (i >= 0 && i < k_array_places) return true;
    error(Err::array_place_range);
    return false;
}

arrptr get_arr_arr(int64_t i) {
    if (!legal_place(i) || arrstash == nullptr) return nullptr;
    return arrstash[i];
}

bool set_arr_arr(int64_t i, arrptr a) {
    if (!legal_place(i)) return false;
    if (arrstash == nullptr) {
        constexpr size_t bytes = k_array_places * sizeof(arrptr);
        arrstash = static_cast<arrptr*>(checked_malloc(bytes));
        memset(static_cast<void*>(arrstash), 0, bytes);
    }
    if (a != nullptr) a->places++;
    if (arrstash[i] != nullptr) arrstash[i]->places--;
    arrstash[i] = a;
    return true;
}

// ---- reports and the checked build ---------------------------------------------------------------------

static int64_t free_records() {
    int64_t count = 0;
    for (const arrnode* p = arr_garb; p != nullptr; p = pool_link<&arrnode::next>(p)) count++;
    return count;
}

static void list_free_records() {
    for (const arrnode* p = arr_garb; p != nullptr; p = pool_link<&arrnode::next>(p))
        printf("%s\n", tok_text(p->name));
}

static int64_t free_work_arrays() {
    int64_t count = 0;
    for (int32_t i = first_available - 1; i < k_work_arrays; i++) count += workhead[i] != nullptr;
    return count;
}

#ifdef TOLVEX_CHECKED
/// The records of one array, counted in the shape that they have in its ring.
static void reach_array(const arrnode* a) {
    boolean shape = lintmode;
    lintmode = a->ring > 0;
    if (a->spar != nullptr)
        audit_reach_sparse(a->spar, a->rows);
    else
        for (int32_t k = 0; k < a->sizearr; k++) audit_reach_quoly(*dense_slot(a, k));
    lintmode = shape;
}

static void reach_arrays() {
    for (const arrnode* a : arr_store) {
        for (; a != nullptr; a = a->next) {
            audit_reach<arrnode>();
            if (!is_alias(a)) reach_array(a);
        }
    }
    if (syst != nullptr) reach_array(syst);
}
#endif

void init_arrays() {
    init_sparse();
    garbage_provide(GarbageRow::arrays, {free_records, sizeof(arrnode), list_free_records});
    garbage_provide(GarbageRow::work_arrays,
                    {free_work_arrays, k_greatest_array * int64_t{sizeof(quoly)}, nullptr});
#ifdef TOLVEX_CHECKED
    audit_pool<arrnode>("arrnode");
    audit_roots(reach_arrays);
#endif
}
}  // namespace tolvex
