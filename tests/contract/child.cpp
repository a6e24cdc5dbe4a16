// The program that contract tests start: lives for the first argument's milliseconds and ends with the second as its
// exit code. What follows is of no interest to it.
#include <chrono>
#include <cstdlib>
#include <thread>

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(argv[1])));
  return std::atoi(argv[2]);
}
