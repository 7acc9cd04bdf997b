#pragma once
/// language/array_display.h: matrices as text.
///
/// Purpose    a dense matrix by rows, its elements in fields; a sparse one by the rows that are not
///            empty, as a literal.
/// Raises     nothing of its own.
#include "language/array_operand.h"

#include <cstdio>
namespace tolvex {
inline constexpr int32_t k_element_width = 4;
/// Writes the matrix. A dense element stands in a field of `width`, with at least one blank between fields; a
/// field that would pass `dispcutoff` begins a new line.
void arrdisplay(FILE* out, const ArrOperand& v, int32_t width);
/// The elements as characters in one run, blanks up to `width`.
void arrdisplay_characters(FILE* out, const ArrOperand& v, int32_t width);
/// The system array, on the standard output.
void display_system_array();
/// The text of a value without leading blank, decimals and line breaks, for as long as the next call does not
/// come; *length: its characters.
const char* element_text(const quolynode* q, size_t* length);
}  // namespace tolvex
