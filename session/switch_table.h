#pragma once
/// session/switch_table.h: the one table of all switches.
///
/// Purpose    a row says everything about a switch: the letter, the word that holds it, what may be stored,
/// what is
///            written. The commands `&x`, the forms `&(x = v)`, and whatever lists or saves the settings go
///            by it, so that a switch is added by adding its row.
///
///   Boolean    `&x` toggles and writes `on` or `off`; `&(x = v)` stores and writes `set_on` or `set_off`
///              (where they differ from these), or says that nothing changed.
///   numeric    `&x` asks `question`; both forms end in `store`, which tests, stores and reports.
///
/// Raises     the errors of the rows, before anything is stored.
#include "storage/failure.h"
#include "storage/types.h"

#include <cstdint>
namespace tolvex {
struct SwitchRow;
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
    int32_t start;           // and its value in a fresh session
    const char *on, *off;
    const char *set_on, *set_off;   // nil: as on and off
    const char* unchanged;          // nil: there is no form `&(x = v)`
    const char* question;           // numeric switches
    Err not_number;                 // the answer is none
    Err set_not_number;             // nor the value of `&(x = v)`
    bool (*store)(SwitchStore& s);  // numeric: false after an error that came back
    void (*after)();                // Boolean: follows a change
    bool wide;                      // `&(x = v)` takes values above 1
    bool rational_only;             // 235 in lintmode
    bool leaves_value;              // `&x` leaves the new value, not 0
};
/// The row of the command `&x`, of the form `&(x = v)`; nil if there is none.
const SwitchRow* find_switch(const char* letter);
const SwitchRow* find_set_switch(const char* letter);
/// Checked build: every Boolean switch starts as its row says. Before the start-up script runs.
void check_switch_table();
}  // namespace tolvex
