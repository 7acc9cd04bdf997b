#include "language/builtin_table.h"

#include "numbers/data_files.h"
#include "numbers/ring_switch.h"

#include <cstdlib>
namespace tolvex {
static int16_t sorted_rows[k_builtin_rows];  // ids in strcmp order of their names

static int compare_rows(const void* a, const void* b) {
    return strcmp(builtin[*static_cast<const int16_t*>(a)][0], builtin[*static_cast<const int16_t*>(b)][0]);
}

void init_builtins() {
    for (int16_t id = 0; id < k_builtin_rows; id++) sorted_rows[id] = id;
    qsort(sorted_rows, k_builtin_rows, sizeof sorted_rows[0], compare_rows);
}

/// "_" belongs to names, so that Det_[m] reads as a name of its own: it is Detmin.
static const char* name_in_table(const tokentipe& name) {
    return tok_is(name, "Det_") ? "Detmin" : tok_text(name);
}

int32_t builtin_id(const tokentipe& name) {
    const char* text = name_in_table(name);
    int32_t low = 0, high = k_builtin_rows - 1;
    while (low <= high) {
        int32_t middle = (low + high) / 2;
        int order = strcmp(text, builtin[sorted_rows[middle]][0]);
        if (order == 0) return sorted_rows[middle];
        if (order < 0)
            high = middle - 1;
        else
            low = middle + 1;
    }
    return -1;
}

namespace {
struct BuiltinRoutines {
    BuiltinRoutine of[k_builtin_rows] = {};
    bool in_ring[k_builtin_rows] = {};  // works in the ground ring also where modular arithmetic is suspended
    // ORDER BUILTIN_IDS: the id is the row of the name in the message file
    constexpr BuiltinRoutines() {
        of[0] = builtin_Array;
        of[1] = builtin_Bin;
        of[6] = builtin_Colreduce;
        of[7] = builtin_Cols;
        of[14] = of[101] = builtin_ArrayExpression;
        of[85] = builtin_Sparse;
        of[90] = builtin_Sumall;
        of[100] = builtin_Trace;
        of[2] = of[62] = builtin_Char;
        of[3] = builtin_Chpoly;
        of[4] = of[9] = builtin_Deg;
        of[5] = builtin_Coef;
        of[8] = builtin_Content;
        of[10] = builtin_Denom;
        of[11] = builtin_Deriv;
        of[12] = builtin_Det;
        of[13] = builtin_Detmin;
        of[15] = of[60] = of[80] = builtin_Divides;
        of[16] = builtin_Egcd;
        of[17] = of[18] = builtin_Equal;
        of[19] = builtin_FFLU;
        of[20] = builtin_FFLUC;
        of[21] = builtin_Factor;
        of[22] = builtin_Ignore;
        of[24] = of[25] = builtin_Func;
        of[26] = builtin_GCD;
        of[27] = builtin_Hamilton;
        of[28] = builtin_Height;
        of[30] = builtin_Irred;
        of[29] = builtin_Hermite;
        of[31] = builtin_Isprime;
        of[32] = builtin_Iszero;
        of[33] = builtin_Killden;
        of[34] = builtin_LCM;
        of[35] = builtin_Lcoef;
        of[36] = builtin_Level;
        of[37] = builtin_Lmon;
        of[38] = builtin_Log;
        of[39] = of[69] = builtin_Lower;
        of[40] = builtin_Lterm;
        of[42] = builtin_MSmith;
        of[43] = of[44] = builtin_Mcoef;
        of[45] = builtin_Minors;
        of[46] = builtin_Minpoly;
        of[47] = builtin_Modmode;
        of[48] = builtin_Modulus;
        of[49] = builtin_Monless;
        of[50] = builtin_Mons;
        of[51] = builtin_Move;
        of[23] = builtin_Flcoef;
        of[52] = builtin_Ncoef;
        of[53] = builtin_Nmcoef;
        of[54] = builtin_Normalize;
        of[55] = builtin_Ntcoef;
        of[56] = builtin_Numb;
        of[57] = builtin_Numcon;
        of[58] = builtin_Numer;
        of[59] = builtin_Numvars;
        of[61] = builtin_Pth;
        of[63] = builtin_Poly;
        of[64] = builtin_Powermod;
        of[65] = builtin_Prime;
        of[66] = of[82] = builtin_Sum;
        of[67] = builtin_Pseudet;
        of[68] = of[70] = builtin_Rand;
        of[71] = builtin_Rat;
        of[72] = builtin_Rcoef;
        of[73] = builtin_Redrowech;
        of[74] = builtin_Remquot;
        of[75] = builtin_Return;
        of[76] = builtin_Reverse;
        of[77] = builtin_Rname;
        of[78] = builtin_Rowreduce;
        of[79] = builtin_SDet;
        of[81] = builtin_STrans;
        of[83] = builtin_Smith;
        of[84] = builtin_Sort;
        of[86] = builtin_Splice;
        of[87] = builtin_Split;
        of[88] = builtin_Sqfree;
        of[89] = builtin_Sqrt;
        of[91] = builtin_Swap;
        of[92] = of[93] = builtin_Switch;
        of[94] = builtin_Synth;
        of[95] = builtin_Terms;
        of[96] = builtin_Fterms;
        of[97] = builtin_Time;
        of[98] = builtin_Bell;
        of[99] = builtin_Totdeg;
        of[102] = builtin_True;
        of[103] = builtin_Var;
        of[104] = builtin_Vars;
        of[105] = builtin_Zap;
        of[106] = of[107] = builtin_ZZ1;
        of[108] = builtin_ZZ3;
        of[109] = builtin_Zcoef;
        // Elimination, interpolation and factorisation need a ring with its divisions.
        constexpr int32_t ids[] = {3, 6, 12, 19, 20, 21, 29, 30, 42, 45, 46, 54, 61, 67, 73, 78, 79, 83};
        for (int32_t id : ids) in_ring[id] = true;
    }
};
constexpr BuiltinRoutines routines;
}  // namespace

bool builtin_function(FILE* inf, quolyptr n, nameptr* flag) {
    int32_t id = token.address < 0 ? builtin_id(token) : token.address - k_builtin_address;
    if (id < 0) return false;
    BuiltinCall call = {inf, n, flag, id};
    bool resumed = routines.in_ring[id] && ring_resume();
    routines.of[id](call);
    ring_suspend(resumed);
    return true;
}
}  // namespace tolvex
