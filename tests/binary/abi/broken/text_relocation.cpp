// An absolute address among the instructions, which the loader has to write there.
asm(".text\n.quad broken_address\n");

extern "C" {
int broken_address = 1;
}
