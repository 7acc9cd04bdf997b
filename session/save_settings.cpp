#include "session/save_settings.h"

#include "language/language_modes.h"
#include "numbers/display_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly.h"
#include "session/mod_out.h"
#include "session/session_modes.h"
#include "session/switch_table.h"

#include <cstring>
namespace tolvex {
/// A quoted text ends at the next quote, so a prompt that holds one goes through an array of its codes.
static void save_prompt(FILE* file) {
    if (promptsize == 0) {
        fprintf(file, "&(M = ' ');\n");
        return;
    }
    if (strcmp(prompt, ">") == 0) return;
    if (strchr(prompt, '\'') == nullptr) {
        fprintf(file, "&(M = '%s');\n", prompt);
        return;
    }
    fprintf(file, "Array pr[%d];\n[pr] := [(", promptsize);
    for (const char* c = prompt; *c != 0; c++)
        fprintf(file, "%s%d", c == prompt ? "" : ", ", static_cast<unsigned char>(*c));
    fprintf(file, ")];\n&(M = [pr]);\n@[pr];\n");
}

/// Declared deepest first, since `=` puts each in front of those before.
static void save_polyvars(FILE* file) {
    polypt deepest = polynames;
    for (polypt v = polynames; v != nullptr; v = v->next) deepest = v;
    for (polypt done = nullptr; deepest != nullptr && done != polynames;) {
        fprintf(file, "&(J = %s);\n", tok_text(deepest->let));
        done = deepest;
        polypt above = nullptr;
        for (polypt v = polynames; v != done; v = v->next) above = v;
        deepest = above;
    }
}

/// The "mass" 1, which turns interpolation off, has a place of its own in front of the other values.
static SavePlace place_of(const SwitchRow& row, int32_t value) {
    return row.save == SavePlace::lagrange_cut && value == 1 ? SavePlace::lagrange_off : row.save;
}

/// True if the value must stand behind the modulus, which would set it anew.
static bool waits_for_ring(const SwitchRow& row) { return row.reset_by_modulus && modularmode; }

/// The value that the settings in front of the row leave in a fresh session: a table field clears
/// alt_form_display.
static int32_t value_before(const SwitchRow& row) {
    return finf && row.at == &alt_form_display ? 0 : row.start;
}

static void save_switch(FILE* file, const SwitchRow& row, int32_t value) {
    if (!row.save_always && value == value_before(row)) return;
    if (row.save == SavePlace::origin && value < 0) {  // stands behind the toggle of a positive one
        fprintf(file, "&(%s = %d);\n&%s;\n", row.letter, 1 - value, row.letter);
        return;
    }
    bool taken = value >= 0 && (row.wide || value <= 1);
    if (taken) fprintf(file, "&(%s = %d);\n", row.letter, value);
}

/// The switches of one place that wait for the ring, or those that do not.
static void save_switches(FILE* file, SavePlace place, bool waiting) {
    size_t count;
    const SwitchRow* rows = switch_rows(&count);
    for (size_t i = 0; i < count; i++) {
        int32_t value = switch_value(rows[i]);
        if (place_of(rows[i], value) == place && waits_for_ring(rows[i]) == waiting)
            save_switch(file, rows[i], value);
    }
}

static void save_place(FILE* file, SavePlace place) {
    switch (place) {
    case SavePlace::prompt_text:
        save_prompt(file);
        return;
    case SavePlace::polyvars:
        save_polyvars(file);
        return;
    case SavePlace::ring:
        if (modularmode) fprintf(file, "&(p = %d);\n", modulus);
        save_mod_out(file);
        return;
    default:
        break;
    }
    save_switches(file, place, false);
}

void save_settings(FILE* file) {
    constexpr auto end = static_cast<int32_t>(SavePlace::count);
    for (int32_t i = 1; i < end; i++) save_place(file, static_cast<SavePlace>(i));
    for (int32_t i = 1; i < end; i++) save_switches(file, static_cast<SavePlace>(i), true);
}
}  // namespace tolvex
