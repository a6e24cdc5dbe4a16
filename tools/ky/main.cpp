#include <iostream>

#include "platform/desk/process.h"
#include "tools/ky/ky.h"

int main(int argc, char** argv) {
  if (!desk::restrict_library_search()) {
    std::cerr << "ky: the search for libraries cannot be restricted\n";
    return 1;
  }
  return workbench::run_ky(desk::arguments(argc, argv), std::cout, std::cerr);
}
