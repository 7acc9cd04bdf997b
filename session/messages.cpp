#include "session/messages.h"

#include "gcd/gcd_modes.h"
#include "language/tokens/token.h"
#include "numbers/data_files.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
const char* shown_token(const char* text) { return strcmp(text, k_end_token) == 0 ? ";" : text; }

void out_err_mess(int32_t k) {
    if (k == static_cast<int32_t>(Err::unknown_command))
        printf("After &, legal symbols are: v,f,F,r,R,d,D,C,B,I,X,L,K,c,W,@,_s,_t,_G\n");
    if (k >= 1 && k <= k_messages) printf("%s\n", erp.mess[k - 1]);
}

void warning(Err code, const char* text) {
    if (text == nullptr) text = tok_text(token);
    text = shown_token(text);
    printf("\n *** Warning.\n");
    // Numbers 0 to 5 are warnings only; the others are errors that are taken lightly here.
    switch (static_cast<int32_t>(code)) {
    case 0:
        printf(" *** Loop counter in Content is negative.  Will reset.\n");
        c_cntcount = a_cntcount = d_cntcount = 200001;
        break;
    case 1:
        printf(" Specified factor for Det is unusable. Will ignore it.\n");
        break;
    case 2:
        printf(" Specified degree is unreasonable. Will ignore it.\n");
        break;
    case 3:
        printf(" Power is of use only over ground rings Z or Z/p.\n");
        break;
    case 4:
        printf(" With even power, |power| must be 2^k, and modulus mod 4 must equal 3.\n");
        break;
    case 5:
        printf(" With odd power, gcd(|power|, modulus-1) must be 1.\n");
        break;
    case 19:
        printf(" *** Undefined variable: %s.  will use 0\n", text);
        break;
    case 22:
        printf(" *** Trying to divide by 0, in variable: %s.  will set quotient to 0\n", text);
        break;
    case 90:
        printf(" *** Can't do Det\n");
        break;
    case 342:
        out_err_mess(342);
        printf(" If necessary, do a panic stop as soon as possible. Then if\n");
        printf(" necessary, delete the parameter %s.\n", text);
        break;
    default:
        printf(" *** Can't do %s\n", text);
        out_err_mess(static_cast<int32_t>(code));
    }
    printf("\n");
}
}  // namespace tolvex
