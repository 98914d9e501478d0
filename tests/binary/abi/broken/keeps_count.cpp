extern "C" {
long count_of_calls = 0;
}
static int once = 1;

int broken(int n) {
    count_of_calls += once;
    once = n;
    return n;
}
