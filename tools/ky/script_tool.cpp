#include <exception>
#include <iostream>

#include "platform/desk/process.h"
#include "tools/ky/script/script_files.h"

// Compiles a script while the project is built. The workbench itself cannot: it embeds the edition's script.
int main(int argc, char** argv) {
  const std::vector<std::string> arguments = desk::arguments(argc, argv);
  if (arguments.size() != 3) {
    std::cerr << "usage: ky_script_tool IN KEY OUT\n";
    return 2;
  }
  try {
    script::compile_file(arguments[0], script::read_key_file(arguments[1]), arguments[2]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
