int compute();
int broken = compute();
