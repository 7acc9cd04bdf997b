#pragma once
/// session/switch_table.h: the one table of all switches.
///
/// Purpose    a row says everything about a switch: the letter, the word that holds it, what may be stored,
///            what is written. The commands `&x`, the forms `&(x = v)`, the display `&g`, the lines of a
///            saved session and the page docs/switches.md go by it, so that a switch is added by adding its
///            row.
///
///   Boolean    `&x` toggles and writes `on` or `off`; `&(x = v)` stores and writes `set_on` or `set_off`
///              (where they differ from these), or says that nothing changed.
///   numeric    `&x` asks `question`; both forms end in `store`, which tests, stores and reports.
///
/// Raises     the errors of the rows, before anything is stored.
#include "storage/failure.h"
#include "storage/types.h"

#include <cstddef>
#include <cstdint>
namespace tolvex {
struct SwitchRow;

/// The lines of `&g` in their order. Those without a row are written by session/status.cpp.
/// ORDER STATUS_LINES
enum class StatusLine : int32_t {
    none,  // not shown
    ring,
    decimals,
    error_levels,
    integer_mode,
    results,
    chpoly,
    hensel,
    stashing,
    det_rows,
    karatsuba,
    method,
    pivot,
    origin,
    interrupt,
    prompt_text,
    ugly,
    comments,
    more_comments,
    lagrange,
    timing,
    files,
    random,
    polyvars,
    exponents,
    primes,
    danger,
    count
};

/// The places of the settings in a saved session, in their order: reading them back must give the session
/// again, so what a modulus sets anew stands behind it, in the same order. Those without a row are written by
/// session/save_settings.cpp.
/// ORDER SAVE_PLACES
enum class SavePlace : int32_t {
    none,  // has no form `&(x = v)`, or is no matter of a session
    error_levels,
    results,
    interrupt,
    origin,
    chpoly,
    det_rows,
    prompt_text,
    ugly,
    monomials,
    timing,
    comments,
    more_comments,
    lagrange_file,
    lagrange_off,
    pivot,
    product_cutoff,
    disk,
    second_factor,
    line_after,
    residues,
    gauss,
    first_factor,
    lifting,
    columns,
    random,
    line_suppression,
    fast_test,
    remainders,
    lagrange_cut,
    polyvars,
    exponents,
    ring,
    count
};

/// How a value reaches a switch.
struct SwitchStore {
    const SwitchRow* row;
    int32_t value;
    bool asked;    // by the question of `&x`, not by `&(x = v)`
    bool loud;     // reports are written
    int32_t left;  // out: the value that the statement leaves
};
struct SwitchRow {
    const char* letter;      // after "&" and after "&(": "V", "#", "_s"
    const char* also;        // another letter of `&x`
    const char* set_letter;  // another letter of `&(x = v)`
    boolean* at;             // Boolean switches: the word
    int32_t start;           // the value in a fresh session
    const char *on, *off;
    const char *set_on, *set_off;    // nil: as on and off
    const char* unchanged;           // nil: there is no form `&(x = v)`
    const char* question;            // numeric switches
    Err not_number;                  // the answer is none
    Err set_not_number;              // nor the value of `&(x = v)`
    bool (*store)(SwitchStore& s);   // numeric: false after an error that came back
    void (*after)();                 // Boolean: follows a change
    bool wide;                       // `&(x = v)` takes values above 1
    bool rational_only;              // 235 in lintmode
    bool (*refuses)(int32_t value);  // raises the error that forbids the value now: true then; nil: none
    bool leaves_value;               // `&x` leaves the new value, not 0
    bool quiet_stored;               // `&x` says nothing in a stored list
    int32_t (*value)();              // the others: the value in force
    const char* meaning;             // for the manual
    const char* values;              // for the manual: the range, where it is not 0 and 1
    StatusLine line;                 // where `&g` shows it
    const char* shown;  // its text: with "%s" on or off is said, with "%d" the value; a Boolean one
                        // without either is shown while it is on
    void (*show)();     // in place of the text
    SavePlace save;
    bool save_always;       // also when it has the value of a fresh session
    bool reset_by_modulus;  // a change to a modulus may set it anew
};
/// All rows.
const SwitchRow* switch_rows(size_t* count);
/// The value in force.
int32_t switch_value(const SwitchRow& row);
/// True if there is a form `&(x = v)`.
bool is_settable(const SwitchRow& row);
/// Writes the row's line of the status display, if it has anything to say.
void show_switch(const SwitchRow& row);
/// The row of the command `&x`, of the form `&(x = v)`; nil if there is none.
const SwitchRow* find_switch(const char* letter);
const SwitchRow* find_set_switch(const char* letter);
/// Checked build: every Boolean switch starts as its row says. Before the start-up script runs.
void check_switch_table();
}  // namespace tolvex
