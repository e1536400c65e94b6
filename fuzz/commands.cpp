extern "C" int LLVMFuzzerTestOneInput(const unsigned char *, unsigned long) { return 0; }
