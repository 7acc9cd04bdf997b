#pragma once
/// quoly/quoly_audit.h: counting the records of a value for the leak audit of the checked build.
///
/// Purpose    walkers of roots call these for each value that they keep; every record that the value owns is
///            counted as reachable: quolynode, polynode, number, numnode.
/// Modes      only in the checked build. In lintmode a record owns no chain.
#ifdef TOLVEX_CHECKED
#include "quoly/quoly.h"
#include "storage/audit.h"
namespace tolvex {
/// The record and its chain.
void audit_reach_number(const number* x);
/// All nodes; nil counts as nothing. Recursion only over levels.
void audit_reach_poly(const polynode* p);
/// The record and its parts; nil counts as nothing.
void audit_reach_quoly(const quolynode* q);
/// Makes the pools of the records above known. Called once, before the first walker runs.
void audit_value_pools();
}  // namespace tolvex
#endif
