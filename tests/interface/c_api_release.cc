// The C test's way to release strings that the library allocated with new[].
extern "C" void corvex_test_release(char* text) { delete[] text; }
