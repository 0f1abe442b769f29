// empty_program.cpp - what starting any C++ program costs.
#include <iostream>

int main() {
    std::cout << "1.0\n";
    return 0;
}
