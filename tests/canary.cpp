#include <cstdio>

/// Says that it ran; with an argument it returns 3.
int main(int argc, char**) {
    std::puts("canary sings");
    return argc > 1 ? 3 : 0;
}
