/// What any program of this toolchain costs before it does anything.
int main() {
    return 0;
}
