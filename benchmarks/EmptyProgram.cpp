// Does nothing: what it costs to run is what loading its libraries costs.
int main() {}
