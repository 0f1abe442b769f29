/* unhardened.c - a library that lacks all hardening, to show that the check of it can fail. */
#include <stdio.h>

int Unhardened(const char* text);

int Unhardened(const char* text) {
    char copy[64];
    return snprintf(copy, sizeof(copy), "%s", text);
}

/* An address within the code, which the dynamic linker would have to write there. */
__asm__(".text\n.dc.a stdout\n");
