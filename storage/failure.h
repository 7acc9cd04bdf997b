#pragma once
/// storage/failure.h: how every layer fails and stops. Declared here, defined in session/ (in tests/support
/// for unit tests), because no lower layer may know the session.
///
/// Purpose    error() is the one way out of a failed statement: it reports, and leaves by a long jump to the
/// read
///            loop. At a pushed command level it may come back: after a call leave the result in normal form
///            (usually 0) and return at once.
/// Invariant  no object with a non-trivial destructor is alive across a call of error, tolvex_error,
/// mem_error or
///            poll_interrupt. Global tables are in order before the call.
#include <cstdint>
namespace tolvex {
/// Numbers into the message table (data/error-messages.txt; line k is number k). ORDER ERROR_NUMBERS
enum class Err : int32_t {
    close_paren_expected = 1,
    bad_factor = 2,
    question_needs_variable = 3,
    equals_expected = 4,
    call_separator = 14,
    call_close_paren = 15,
    unknown_function = 16,
    unknown_command = 17,
    undefined_variable = 19,
    no_function_to_delete = 20,
    delete_form = 21,
    division_by_zero = 22,
    close_bracket_expected = 24,
    index_out_of_range = 27,
    undefined_array = 28,
    exponent_too_long = 32,
    bad_file_name = 33,
    sqrt_needs_prime = 34,
    sqrt_bad_argument = 37,
    array_expected = 40,
    ring_needed_plain = 62,
    close_bar_expected = 63,
    mode_change_above_level_1 = 73,
    bad_modulus = 84,
    not_invertible = 85,
    char_needs_number = 91,
    factorial_range = 94,
    delete_list = 95,
    end_of_file_inside = 103,
    output_separator = 105,
    output_not_closed = 106,
    unterminated_character = 109,
    command_too_long = 114,
    sqrt_of_non_number = 115,
    exponent_not_number = 116,
    index_not_number = 118,
    ring_mismatch = 121,
    polyvar_bad_name = 124,
    polyvar_as_name = 125,
    polyvar_name_taken = 126,
    not_terminated = 129,
    factorial_of_non_number = 130,
    suspended_shape = 131,
    switch_value_too_large = 133,
    switch_close_paren = 135,
    switch_unknown = 136,
    switch_negative = 137,
    switch_not_text = 141,
    columns_not_number = 143,
    interrupt_level = 146,
    switch_not_number = 147,
    modulus_zero = 148,
    builtin_shape_coefficient = 154,
    read_level = 159,
    read_unknown_variable = 160,
    read_exponent = 161,
    read_exponent_paren = 162,
    read_order = 163,
    read_coefficient_paren = 165,
    deletion_in_use = 170,
    system_array_undefined = 175,
    builtin_open_paren = 177,
    builtin_open_bracket = 178,
    rational_function_argument = 186,
    detcutoff_value = 189,
    not_monomial = 192,
    rational_not_allowed = 196,
    builtin_comma = 202,
    negative_exponents = 205,
    by_reference_needed = 207,
    text_too_long = 209,
    zero_denominator = 210,
    laurent_no_unit = 211,
    array_of_arrays_bracket = 217,
    array_of_arrays_empty = 220,
    no_stored_statement = 222,
    increment_not_number = 223,
    increment_too_long = 224,
    control_in_wrong_place = 225,
    number_expected = 227,
    too_many_polyvars = 228,
    not_in_word_mode = 235,
    factorial_word_range = 240,
    output_form_only = 262,
    poly_cutoff_value = 272,
    variable_argument = 273,
    degree_form = 276,
    variable_number_range = 278,
    binomial_too_large = 279,
    rational_divisor = 280,
    variable_not_declared = 282,
    negative_derivative = 283,
    stash_sign_expected = 285,
    prime_argument_too_long = 289,
    increment_range = 294,
    first_factor_range = 295,
    listing_terminator = 303,
    location_not_wanted = 313,
    negative_index = 314,
    assignment_left_value = 316,
    assignment_form = 317,
    move_needs_variable = 337,
    slash_after_operator = 339,
    no_digit_after_point = 341,
    prime_index_range = 346,
    nested_too_deeply = 347,
    suspended_not_terminated = 350,
    ring_locked = 353,
    no_such_polyvar = 355,
    polyvar_modded = 356,
    polyvar_value_not_number = 360,
    polyvar_separator = 361,
    polyvar_not_now = 362,
    move_of_polyvar = 363,
};

/// Reports error `code` and leaves the statement. `text` is the offending symbol; nullptr means the current
/// token. Codes 0 (panic stop) and -1 (new command level) go through the two routines below.
void error(Err code, const char* text = nullptr);
/// Writes a warning of the numbered list and returns.
void warning(Err code, const char* text = nullptr);
/// An internal fault: prints "*** Tolvex error. " and the printf-style text, ends the statement (the process,
/// while the start-up data are being read). Does not return.
[[noreturn, gnu::format(printf, 1, 2)]] void tolvex_error(const char* format, ...);
/// Called when the general allocator or the budget fails: frees caches and returns, or ends the statement.
void mem_error();
/// Acts on a pending interrupt: opens a command level or stops. Called only through poll_interrupt().
void take_interrupt();
}  // namespace tolvex
