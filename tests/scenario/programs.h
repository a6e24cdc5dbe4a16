#pragma once

#include <string>
#include <vector>

namespace scenario {

/// A path of the desk as this build's programs take it; `path` is as the build knows it.
[[nodiscard]] std::string desk_path(const std::string& path);

/// The program and its arguments as the line that starts it.
[[nodiscard]] std::string command_line(const std::string& program, const std::vector<std::string>& arguments);

/// Runs a program to its end and gives its exit code. What it prints is of no interest.
[[nodiscard]] int run_program(const std::string& program, const std::vector<std::string>& arguments);

/// A fresh folder of the desk for one test's files.
[[nodiscard]] std::string output_folder(const std::string& name);

/// A file's text; a failure fails the test.
[[nodiscard]] std::string read_text(const std::string& path);

}  // namespace scenario
