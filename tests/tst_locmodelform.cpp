int main() { return 1; } // not written yet
