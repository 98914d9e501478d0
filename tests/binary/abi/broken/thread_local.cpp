thread_local int state = 0;

int broken() {
    return ++state;
}
