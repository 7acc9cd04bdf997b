#pragma once
/// matrix/array.h: named arrays, the store of their elements, the system array, and the array of arrays.
///
///   arr_store[hash] -> arrnode -> arrnode -> ... -> nil        newest first: it hides older ones of its name
///   dense    elements at arp positions start..stop, column by column: (r, c) at start + r + c * rows
///   sparse   spar, the chain of row tables (matrix/sparse.h); start 0, stop -1
///   alias    an array parameter: time < 0, father is the array itself; all but name and father is read there
///
/// Purpose    creation, lookup, subscripts, conversion and release of whole arrays.
/// Invariant  the dense arrays lie end to end in arp, in the order of their creation, which is the order of
///            their stamps; endarr is the last position in use, and slots behind it are nil. A slot of a
///            dense array that has not been written yet is nil. The values of an array are those of the ring
///            `ring`. A sparse array has a chain.
/// Ownership  an array owns its elements, an alias nothing. Elements are freed here without asking whether an
///            evaluator holds them: language/array_values.h does that first.
/// Raises     26, 27, 43 creation; 27 subscripts; 28 array_seek; 221 array of arrays.
#include "language/tokens/name_table.h"
#include "matrix/sparse.h"
#include "matrix/work.h"
namespace tolvex {
struct arrnode;
using arrptr = arrnode*;
struct arrnode {
    tokentipe name;
    int32_t start, stop;  // of a dense array in arp
    int64_t sizearr;      // rows times columns; a sparse array may exceed a word
    int32_t rows;
    int32_t time;     // stamp of its creation, negative in an alias
    sparseptr spar;   // nil: dense
    arrptr next;      // bucket, or arr_garb
    arrptr father;    // of an alias, else nil
    boolean linear;   // declared with one subscript
    int32_t ring;     // modulus of the ring that the values belong to, -1 the integers
    int32_t lent;     // operands under way that borrow elements: it cannot be cancelled
    boolean shared;   // its chain is that of such an operand as well: it is copied before it changes
    int32_t aliases;  // live array parameters that stand for it
    int32_t places;   // places of the array of arrays that name it
};
static_assert(std::is_trivially_destructible_v<arrnode>);

inline constexpr int32_t k_store_block = 1024;
inline constexpr int32_t k_store_blocks = 5000;
inline constexpr int32_t k_greatest_position = k_store_block * k_store_blocks - 1;
struct storerec {
    quoly val[k_store_block];
};
using one_array = storerec* [k_store_blocks];

inline arrptr arr_garb = nullptr;
inline NameTable<arrnode, &arrnode::name, k_variable_buckets> arr_store;
inline one_array arp = {};
inline int32_t numblocks = 0;   // blocks in use; they are kept
inline int32_t endarr = -1;     // last position in use
inline int32_t array_time = 0;  // stamp of the newest array

// ---- tables --------------------------------------------------------------------------------------------

/// *p := the newest array of that name, nil if there is none. Returns its start, -1 if there is none.
int32_t fastestlookup(tokentipe& name, arrptr* p);
/// The same with error 28: false then.
bool array_seek(tokentipe& name, arrptr* p);
/// The array that a record stands for: of an alias its father, else itself.
inline arrptr array_itself(arrptr a) { return a->time < 0 ? a->father : a; }
inline bool is_alias(const arrnode* a) { return a->time < 0; }
/// Columns: n / m.
inline int64_t quotient_of(int64_t n, int32_t m) { return n / m; }
inline int64_t columns_of(const arrnode* a) { return quotient_of(a->sizearr, a->rows); }
inline bool oversize(int64_t rows, int64_t cols) {
    return rows > k_greatest_array || rows * cols > k_greatest_array;
}

// ---- elements ------------------------------------------------------------------------------------------

/// A position of the store.
inline quolyptr arp_slot(int32_t position) {
    return &arp[position / k_store_block]->val[position % k_store_block];
}
/// The position of a location in the store; -1: it is elsewhere. Time the number of blocks.
int32_t position_of(const quoly* at);
/// Element k of a dense array itself (no alias), from 0, column by column.
quolyptr dense_slot(const arrnode* a, int32_t k);
/// Resolves the subscripts r, c, or r alone, as the user counts them, in the array itself: *index counts the
/// elements from 0, column by column. False after error 27, which names `name`.
bool find_place(const arrnode* a, int64_t r, int64_t c, bool two, const tokentipe& name, int64_t* index);
/// The same without a report.
bool is_place(const arrnode* a, int64_t r, int64_t c, bool two, int64_t* index);
/// The row from 0 and the column from 1 of an element.
inline int32_t row_of_place(const arrnode* a, int64_t index) { return static_cast<int32_t>(index % a->rows); }
inline int32_t column_of_place(const arrnode* a, int64_t index) {
    return static_cast<int32_t>(index / a->rows) + 1;
}
/// The location of the value; nil: a sparse array has no entry there.
quolyptr place_slot(const arrnode* a, int64_t index);
/// Calls f for the location of every value of the array itself that is there; a sparse entry that has become
/// 0 is unlinked, a dense one becomes the number 0.
void for_each_element(arrptr a, void (*f)(quolyptr value, void* context), void* context);

// ---- creation and release ------------------------------------------------------------------------------

/// A dense array of r rows and c columns, its elements nil. Nil after error 26, 27 or 43.
arrptr insertarr(const tokentipe& let, int64_t r, int64_t c, bool liner);
/// A sparse array; `chain`: its entries, used up; nil: none. Nil after error 27, and 26 if its row tables
/// exceed the memory budget.
arrptr sparse_create(const tokentipe& let, int64_t r, int64_t c, bool liner, sparseptr chain);
/// An alias of the array, not in the table yet.
arrptr new_alias(const tokentipe& let, arrptr of);
/// Puts a record at the head of its bucket, takes it off again.
void link_array(arrptr a);
void unlink_array(arrptr a);
/// Gives back an alias that is in no bucket.
void free_alias(arrptr a);
/// Frees the elements, in the shape that numbers have in their ring; dense slots are nil afterwards, a sparse
/// array is without a chain.
void free_elements(arrptr a);
/// The array gives up its values, which are those of another ring, and belongs to the one in force.
void enter_ring(arrptr a);
/// Cancels the array itself: unlinks it, frees what it owns, closes the hole that it leaves in the store. Its
/// places in the array of arrays become empty. It has no alias and lends nothing.
void free_array(arrptr a);
/// The same for one of many: its hole stays until close_holes(), which must follow before anything raises.
void free_array_of_many(arrptr a);
/// The arrays move together over the holes: time n log n in their number, and linear in their elements.
void close_holes();
/// True if a dense array of r by c has room in the store once this one, if it is dense, has gone; else error
/// 26 or 43.
bool store_has_room(const arrnode* a, int64_t r, int64_t c);
/// The array itself, whose elements have been freed, takes another shape and, if dense, the last place in the
/// store; `chain`: it becomes sparse with these entries, used up. Its stamp is new. A dense one has room.
void reshape_array(arrptr a, int64_t r, int64_t c, bool liner, sparseptr chain);
/// The dense array, which keeps its stamp, becomes sparse: its elements move, zeros go, the hole is closed.
void fill_sparse(arrptr a);
// ---- the system array ----------------------------------------------------------------------------------

inline arrptr syst = nullptr;         // the result of the last array expression; nil: none yet
inline workptr syst_stash = nullptr;  // its dense elements, k_greatest_array of them

/// The record of the system array, empty: what it owned is freed.
arrptr clear_syst();

// ---- the array of arrays -------------------------------------------------------------------------------

inline constexpr int32_t k_array_places = 400000;
inline arrptr* arrstash = nullptr;  // the places, nil: empty; allocated when the first is filled

/// The array at place i, nil if the place is empty; error 221 (and nil) if there is no such place.
arrptr get_arr_arr(int64_t i);
/// Place i names the array itself, nil: nothing. False after error 221.
bool set_arr_arr(int64_t i, arrptr a);

/// Pools, roots of the audit, lines of the garbage report. Once, at start-up.
void init_arrays();
}  // namespace tolvex
