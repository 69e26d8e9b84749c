// Nothing to run: the build links every object of the core into this
// program, which succeeds only while the core calls nothing outside itself
// and the standard library.
int main() { return 0; }
