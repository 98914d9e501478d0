int broken(int n) {
    int entries[4] = {};
    for (int i = 0; i <= 4; ++i) {
        entries[i] = n;
    }
    return entries[n & 3];
}
