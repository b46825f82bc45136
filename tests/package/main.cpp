// The smallest program that links the installed library; run.sh compares what it prints.
#include <iostream>
#include <tavo/tavo.h>

int main() { std::cout << "linked: Tavo\n"; }
