#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/machine/document.h"

/// No text breaks the reader of machine files, and what it takes is written in a form that reads and writes the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  std::string written;
  try {
    written = machine::write_document(machine::read_document(text, "input"));
  } catch (const machine::DocumentError&) {
    return 0;
  }
  if (machine::write_document(machine::read_document(written, "written")) != written) std::abort();
  return 0;
}
