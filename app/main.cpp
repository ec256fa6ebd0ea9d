#include <cstdio>

int main(int argc, char** argv) {
  std::fprintf(stderr, "blockara: the program is being built\n");
  return 0;
}
