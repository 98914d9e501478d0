// A weak definition, which any other library of the process may replace.
[[gnu::weak]] int replaceable() {
    return 1;
}

int broken() {
    return replaceable();
}
