void broken(int n) {
    if (n < 0) {
        throw n;
    }
}
