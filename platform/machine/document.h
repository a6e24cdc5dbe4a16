#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/machine/state.h"

/// The machine as a JSON document. Its form is told in docs/machine.md and docs/machine.schema.json.
namespace machine {

inline constexpr std::string_view document_format = "ky-machine";
inline constexpr int document_version = 1;
inline constexpr std::size_t largest_document = std::size_t{64} << 20;
inline constexpr std::size_t deepest_document = 16;

/// A document that describes no machine. The text is one line: file, place and reason.
class DocumentError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws `DocumentError`; `file_name` is for its text.
[[nodiscard]] State read_document(std::string_view text, const std::string& file_name);

/// The document of a state, always the same text for the same state. What `read_document` makes of it is written as
/// that text again.
[[nodiscard]] std::string write_document(const State& state);

}  // namespace machine
