// For builds that count which lines are run: _exit, which skips what the end of a program does
// otherwise, writes the counts first.
// NOLINTBEGIN(bugprone-reserved-identifier): the compiler's and the linker's names
extern "C" {

void __gcov_dump();
[[noreturn]] void __real__exit(int status);

[[noreturn]] void __wrap__exit(int status) {
    __gcov_dump();
    __real__exit(status);
}
}
// NOLINTEND(bugprone-reserved-identifier)
