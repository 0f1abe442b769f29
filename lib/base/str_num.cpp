// str_num.cpp - tells texts of digits from others.
#include "velk/frame.h"

unsigned isStrNum(const char* text) {
    if (text == nullptr) {
        return 1;
    }
    for (; *text != '\0'; ++text) {
        if (*text < '0' || *text > '9') {
            return 0;
        }
    }
    return 1;
}
