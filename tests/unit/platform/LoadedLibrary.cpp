// The library that the tests of DynamicLibrary load.

extern "C" int Doubled(int number) {
    return 2 * number;
}
