#include "language/tokens/token_list.h"
namespace tolvex {
void tok_set(tokentipe& t, const char* text) {
    size_t length = strnlen(text, k_namelength);
    memset(t.name, 0, sizeof t.name);
    memcpy(t.name, text, length);
    t.address = -1;
}

int16_t hash(const unsigned char* s, int32_t n) {
    int32_t h = 0;
    for (; *s != 0; s++) h = (h * 123 + *s) % n;
    return static_cast<int16_t>(h);
}

void newname(nameptr* p) {
    *p = pool_pop<&namenode::next>(name_garb, nullptr);
    (*p)->compiled = 0;
    (*p)->space = 0;
    (*p)->tipe = zzero;
    (*p)->next = nullptr;
}

void freename(nameptr* p) {
    nameptr first = *p;
    *p = nullptr;
    if (first == nullptr) return;
    nameptr last = first;
    while (last->next != nullptr) last = last->next;
    pool_splice<&namenode::next>(name_garb, first, last);
}
}  // namespace tolvex
