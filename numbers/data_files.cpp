#include "numbers/data_files.h"

#include "numbers/decimal_io.h"
#include "numbers/gf_tables.h"
#include "numbers/num_assign.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "storage/audit.h"
#include "storage/failure.h"

#include <cstdlib>
#include <cstring>
namespace tolvex {
messarray erp;
char builtin[k_builtin_rows][2][11];
number two_28[130];
int32_t factnum[k_tabulated_factorials];
number facts[k_tabulated_factorials];
imptr binom[k_binoms];
FILE* chdat;

namespace {
/// One data file in memory. Every file is read in one piece and parsed from there. The buffers are static, so
/// that a failure in the middle leaves nothing behind.
struct DataFile {
    char* text;
    const char* at;
    const char* end;
};
DataFile pow228_file = {}, data_file = {};  // pow228 is still open while pprods is read

/// directory + name, opened; nil if there is no such file.
FILE* open_in(const char* directory, const char* name) {
    size_t length = strlen(directory) + strlen(name) + 1;
    auto* path = static_cast<char*>(checked_malloc(length));
    snprintf(path, length, "%s%s", directory, name);
    FILE* f = fopen(path, "rb");
    free(path);
    return f;
}

void close_file(DataFile* file) {
    free(file->text);
    *file = {};
}

/// Reads the whole file; tolvex_error(missing) if it cannot be opened.
void read_file(DataFile* file, const char* directory, const char* name, const char* missing) {
    close_file(file);
    FILE* f = open_in(directory, name);
    if (f == nullptr) tolvex_error("%s", missing);
    size_t room = 1 << 16, length = 0;
    file->text = static_cast<char*>(checked_malloc(room + 1));
    for (;;) {
        length += fread(file->text + length, 1, room - length, f);
        if (length < room) break;
        auto* wider = static_cast<char*>(checked_malloc(2 * room + 1));
        memcpy(wider, file->text, length);
        free(file->text);
        file->text = wider;
        room *= 2;
    }
    fclose(f);
    file->text[length] = '\0';  // ends every run of digits
    file->at = file->text;
    file->end = file->text + length;
}

bool is_blank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

void skip_blanks(DataFile* file) {
    while (file->at < file->end && is_blank(*file->at)) file->at++;
}

/// The next integer, which must lie in low..high; otherwise the file is damaged in the way that `text` says.
int32_t next_integer(DataFile* file, int64_t low, int64_t high, const char* text) {
    skip_blanks(file);
    const char* at = file->at;
    bool negative = *at == '-';
    if (*at == '-' || *at == '+') at++;
    if (*at < '0' || *at > '9') tolvex_error("%s", text);
    int64_t value = 0;
    for (; *at >= '0' && *at <= '9'; at++)
        if (value <= INT32_MAX) value = 10 * value + (*at - '0');
    if (negative) value = -value;
    if (value < low || value > high) tolvex_error("%s", text);
    file->at = at;
    return static_cast<int32_t>(value);
}

template <class T>
void next_integers(DataFile* file, T* table, int32_t count, int64_t low, int64_t high, const char* text) {
    for (int32_t i = 0; i < count; i++) table[i] = static_cast<T>(next_integer(file, low, high, text));
}

/// x := the chain of `count` digits, head first, all non-negative and below `base`; the head is not 0. x owns
/// what has been read at every moment.
void next_digits(DataFile* file, imptr x, int32_t count, int32_t base, const char* text) {
    special_free(x);
    for (int32_t i = 0; i < count; i++) {
        int32_t digit = next_integer(file, i == 0 ? 1 : 0, base - 1, text);
        numptr p = newnum();
        p->value = digit;
        p->next = nullptr;
        if (i == 0)
            x->head = p;
        else
            x->tail->next = p;
        x->tail = p;
        x->size = i + 1;
    }
}

/// x := a digit count and that many digits in base 2^28.
void next_chain(DataFile* file, imptr x, const char* text) {
    next_digits(file, x, next_integer(file, 1, INT32_MAX, text), k_base, text);
}

// ---- chdat, Qerrs --------------------------------------------------------------------------------------

void open_chdat(const char* directory) {
    constexpr int k_tries = 25;
    if (chdat != nullptr) fclose(chdat);
    chdat = nullptr;
    for (int i = 0; i < k_tries && chdat == nullptr; i++) chdat = open_in(directory, "chdat");
    if (chdat == nullptr) tolvex_error("can't find chdat.");
}

constexpr char k_qerrs_damaged[] = "Qerrs file is damaged.";

/// One message: the first 65 characters of a line. A line is read in pieces of at most 1024 characters.
void next_message(DataFile* file, char* message) {
    constexpr ptrdiff_t k_piece = 1024;
    if (file->at == file->end) tolvex_error("%s", k_qerrs_damaged);
    ptrdiff_t length = 0;
    while (length < k_piece && file->at + length < file->end && file->at[length] != '\n') length++;
    ptrdiff_t kept = length < k_message_length - 1 ? length : k_message_length - 1;
    memcpy(message, file->at, static_cast<size_t>(kept));
    memset(message + kept, 0, static_cast<size_t>(k_message_length - kept));
    file->at += length;
    if (file->at < file->end && *file->at == '\n') file->at++;
}

/// One blank-separated word of at most 10 characters.
void next_word(DataFile* file, char* word) {
    skip_blanks(file);
    ptrdiff_t length = 0;
    while (file->at + length < file->end && !is_blank(file->at[length])) length++;
    if (length == 0 || length > 10) tolvex_error("%s", k_qerrs_damaged);
    memcpy(word, file->at, static_cast<size_t>(length));
    word[length] = '\0';
    file->at += length;
}

void read_qerrs(const char* directory) {
    constexpr int32_t k_least_builtins = 54;
    DataFile* file = &data_file;
    read_file(file, directory, "Qerrs", "can't find Qerrs");
    for (auto& message : erp.mess) next_message(file, message);
    numbuiltins = next_integer(file, k_least_builtins, k_builtin_rows - 1, "number builtins is wrong.");
    for (int32_t i = 0; i < k_builtin_rows; i++) {
        strcpy(builtin[i][0], "b");  // no token that begins with a lower-case letter is looked up here
        strcpy(builtin[i][1], "");
        if (i > numbuiltins) continue;
        next_word(file, builtin[i][0]);
        next_word(file, builtin[i][1]);
    }
    close_file(file);
}

// ---- pow228 --------------------------------------------------------------------------------------------

constexpr char k_pow228_damaged[] = "pow228 file is damaged.";

constexpr int32_t k_binom_step = 3, k_binom_last_row = 150;
constexpr int32_t binom_entries() {
    int32_t count = 0;
    for (int32_t n = k_binom_step; n <= k_binom_last_row; n += k_binom_step) count += n / 2;
    return count;
}
static_assert(binom_entries() == k_binoms);

/// Rows n = 3, 6 .. 150 of the triangle, columns 1..n/2. The count of digits goes up by one at each negative
/// integer.
void read_binomials(DataFile* file) {
    int32_t k = 0;
    for (int32_t n = k_binom_step; n <= k_binom_last_row; n += k_binom_step) {
        int32_t size = 1;
        for (int32_t i = 1; i <= n / 2; i++, k++) {
            if (binom[k] == nullptr) {
                newimag(&binom[k]);
                binom[k]->lint = 0;
            }
            skip_blanks(file);
            if (*file->at == '-') {
                next_integer(file, -INT32_MAX, -1, k_pow228_damaged);
                size++;
            }
            next_digits(file, binom[k], size, k_base, k_pow228_damaged);
        }
    }
}

/// All but the words of the first binomials, which are read after pprods.
void read_pow228(const char* directory) {
    constexpr int32_t k_tens = 100000000;
    DataFile* file = &pow228_file;
    read_file(file, directory, "pow228", "can't find pow228.");
    for (number& power : two_28) {
        int32_t decimals = next_integer(file, 1, INT32_MAX - 7, k_pow228_damaged);
        next_digits(file, &power, (decimals + 7) / 8, k_tens, k_pow228_damaged);
    }
    next_integers(file, factnum, k_tabulated_factorials, 0, INT32_MAX, k_pow228_damaged);
    for (number& factorial : facts) {
        factorial.lint = 0;
        next_chain(file, &factorial, k_pow228_damaged);
    }
    facts[0].lint = 1;
    facts[1].lint = 3628800;
    read_binomials(file);
}

void read_binomial_words() {
    constexpr int32_t k_words = 80;  // those that fit a word
    for (int32_t i = 0; i < k_words; i++)
        binom[i]->lint = next_integer(&pow228_file, 0, INT32_MAX, k_pow228_damaged);
    close_file(&pow228_file);
}

// ---- pprods --------------------------------------------------------------------------------------------

constexpr char k_pprods_damaged[] = "pprods file is damaged.";
constexpr int32_t k_first_product_prime = 5;  // the first of `prime` that is used in remaindering

void set_prime(int32_t i, int32_t p) {
    setvalue(p, &prime[i]);
    prime[i].lint = p;
}

/// invs_prod[i] := 1 / (prime[5] ... prime[5 + i]) modulo prime[6 + i]; 0 if a damaged last prime leaves
/// none.
void fill_inverse_products() {
    for (int32_t i = 0; i < k_invs_prods; i++) {
        set_modulus(prime[k_first_product_prime + 1 + i].lint);
        uint32_t product = 1;
        for (int32_t j = 0; j <= i; j++)
            product = residue_mult(product, static_cast<uint32_t>(prime[k_first_product_prime + j].lint));
        invs_prod[i] = mod_inverse_or_0(static_cast<int32_t>(product));
    }
    set_modulus(-1);
}

void read_pprods(const char* directory) {
    constexpr int32_t k_first_primes[] = {3001, 16087, 16273, 16339, 19997};
    constexpr int32_t k_last_prime = 48869, k_last_size = 332;
    DataFile* file = &data_file;
    read_file(file, directory, "pprods", "can't find pprods");
    for (int32_t i = 0; i < k_first_product_prime; i++) set_prime(i, k_first_primes[i]);
    for (int32_t i = k_first_product_prime; i < k_primes; i++)
        set_prime(i, next_integer(file, 2, k_max_digit, k_pprods_damaged));
    int32_t last = prime[k_primes - 1].lint;
    if (last != k_last_prime) {
        printf("*** Tolvex error. error in pprods, last prime.\n");
        printf("%d %c %d\n", last, ' ', k_last_prime);
    }
    fill_inverse_products();
    for (number& product : num_prod) next_chain(file, &product, k_pprods_damaged);
    if (num_prod[k_num_prods - 1].size != k_last_size)
        printf("*** Tolvex error. error in pprods, last num_prod.\n");
    read_binomial_words();
    close_file(file);
}

// ---- primelist, bprimes, lrgpmes -----------------------------------------------------------------------

void read_prime_lists(const char* directory) {
    constexpr char k_medium[] = "primelist file is damaged, medium.";
    constexpr char k_small[] = "primelist file is damaged, small.";
    constexpr int32_t k_last_medium = 42349, k_first_global = 7;
    DataFile* file = &data_file;
    read_file(file, directory, "primelist", "can't find primelist");
    next_integers(file, small_prime, k_small_primes, 0, INT16_MAX, k_small);
    next_integers(file, med_prime, k_med_primes, 2, INT32_MAX, k_medium);
    if (med_prime[k_med_primes - 1] != k_last_medium) tolvex_error("%s", k_medium);
    if (small_prime[k_small_primes - 1] == 0) tolvex_error("%s", k_small);
    for (int32_t i = 0; i < k_global_list; i++) global_list[i] = small_prime[k_first_global + i];
    close_file(file);
}

/// A file of `count` primes that ends with `last`.
void read_word_primes(const char* directory, const char* name, const char* missing, const char* damaged,
                      int32_t* table, int32_t count, int32_t last) {
    DataFile* file = &data_file;
    read_file(file, directory, name, missing);
    next_integers(file, table, count, 2, INT32_MAX, damaged);
    if (table[count - 1] != last) tolvex_error("%s", damaged);
    close_file(file);
}

// ---- the finite fields ---------------------------------------------------------------------------------

/// A part of a field table is damaged unless the entry that tells it has its value.
void check_entry(int32_t entry, int32_t expected, const char* text) {
    if (entry != expected) tolvex_error("%s", text);
}

void read_f256d(const char* directory) {
    constexpr char k_damaged_1[] = "f256d file is damaged 1.", k_damaged_2[] = "f256d file is damaged 2.",
                   k_damaged_3[] = "f256d file is damaged 3.";
    DataFile* file = &data_file;
    read_file(file, directory, "f256d", "can't find f256d");
    next_integers(file, f256inv + 1, 255, 0, 255, k_damaged_1);
    check_entry(f256inv[255], 28, k_damaged_1);
    for (int32_t i = 0; i < 256; i++) next_integers(file, f256prod[i] + i, 256 - i, 0, 255, k_damaged_2);
    check_entry(f256prod[255][255], 19, k_damaged_2);
    next_integers(file, f256sqr, 256, 0, 255, k_damaged_3);
    check_entry(f256sqr[255], 78, k_damaged_3);
    for (int32_t i = 0; i < 256; i++)
        for (int32_t j = 0; j < i; j++) f256prod[i][j] = f256prod[j][i];
    close_file(file);
}

void read_f2t16d(const char* directory) {
    constexpr char k_damaged_1[] = "f2t16d file is damaged 1.",
                   k_damaged_1_5[] = "f2t16d file is damaged 1.5.",
                   k_damaged_2[] = "f2t16d file is damaged 2.", k_damaged_3[] = "f2t16d file is damaged 3.",
                   k_damaged_4[] = "f2t16d file is damaged 4.";
    constexpr int32_t k_order = 65535;
    DataFile* file = &data_file;
    read_file(file, directory, "f2t16d", "can't find f2t16d");
    next_integers(file, f2t16exp, k_order + 1, 0, k_order, k_damaged_1);
    check_entry(f2t16exp[65535], 1, k_damaged_1);
    check_entry(f2t16exp[64507], 14, k_damaged_1_5);
    next_integers(file, f2t16inv + 1, k_order, 0, k_order, k_damaged_2);
    check_entry(f2t16inv[65535], 3602, k_damaged_2);
    next_integers(file, f2t16log + 1, k_order, 0, k_order, k_damaged_3);
    check_entry(f2t16log[65535], 483, k_damaged_3);
    next_integers(file, f2t16sqr, k_order + 1, 0, k_order, k_damaged_4);
    check_entry(f2t16sqr[65535], 41708, k_damaged_4);
    close_file(file);
}

// ---- storage -------------------------------------------------------------------------------------------

/// The free list of digits starts with 5001 nodes of its stash.
void stock_digits() {
    constexpr int32_t k_nodes = 5001;
    numptr first = newnum(), last = first;
    for (int32_t i = 1; i < k_nodes; i++) {
        last->next = newnum();
        last = last->next;
    }
    last->next = nullptr;
    free_chain(first, last);
}

/// What the memory report counts for fixed tables, whatever they take: three rows of 25001 words and three
/// squares of 701 x 701 for dense polynomials, three rows of 50001 words and one of 100002 for sparse ones.
constexpr int64_t k_table_bytes = 4 * (3 * 25001 + 3 * 701 * 701 + 3 * 50001 + 100002);

#ifdef TOLVEX_CHECKED
/// Of the numbers that this folder keeps only disp_cons changes after the start.
void reach_numbers() {
    if (audit_row_of<numnode> != nullptr) audit_reach<numnode>(disp_cons.size);
}

void register_roots() {
    static bool registered = false;
    if (!registered) audit_roots(reach_numbers);
    registered = true;
}
#else
void register_roots() {}
#endif
}  // namespace

void initialize(const char* directory) {
    register_roots();
    stock_digits();
    set_disp_size(disp_size);
    size_data_strucs = k_table_bytes;
    open_chdat(directory);
    read_qerrs(directory);
    read_pow228(directory);
    read_pprods(directory);
    read_prime_lists(directory);
    read_word_primes(directory, "bprimes", "can't find bprimes", "bprimes file is damaged.", big_prime,
                     k_big_primes, 65521);
    read_f256d(directory);
    read_f2t16d(directory);
    read_word_primes(directory, "lrgpmes", "can't find lrgpmes", "lrgpmes file is damaged.", lrgpme,
                     k_lrg_primes, 2147483629);
}
}  // namespace tolvex
