extern const char broken[100 * 1024] = {1};
