#include "tools/ky/reference/generated_files.h"

#include "host/script/command_schema.h"
#include "platform/desk/desk.h"
#include "tools/ky/reference/command_index.h"
#include "tools/ky/reference/command_page.h"
#include "tools/ky/reference/schema_document.h"

namespace reference {

std::vector<GeneratedFile> generated_files() {
  const std::string folder = std::string(pages_folder) + '/';
  std::vector<GeneratedFile> files = {{"resources/installerxmlschema.xsd", schema_document()},
                                      {folder + "README.md", command_index()}};
  for (const host::CommandSchema& command : host::all_commands()) {
    files.push_back({folder + std::string(command.name) + ".md", command_page(command)});
  }
  return files;
}

std::string write_generated_files(const std::string& root) {
  std::string failure = desk::make_folders(desk::join(root, pages_folder));
  for (const GeneratedFile& file : generated_files()) {
    if (!failure.empty()) break;
    failure = desk::write_file(desk::join(root, file.path), file.bytes);
  }
  return failure;
}

}  // namespace reference
