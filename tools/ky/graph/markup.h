#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace graph {

// Text as Graphviz' language takes it. What its users see is UTF-8 that holds no NUL.

namespace colour {
inline constexpr std::string_view text = "#1f2937";
inline constexpr std::string_view quiet = "#6b7280";
inline constexpr std::string_view line = "#4b5563";
inline constexpr std::string_view taken = "#1d5fa8";
inline constexpr std::string_view back = "#c2410c";
inline constexpr std::string_view proviso = "#7a4d9e";
inline constexpr std::string_view id = "#1d6f5c";
inline constexpr std::string_view id_ground = "#e6f2ee";
inline constexpr std::string_view title_ground = "#dfe4ec";
inline constexpr std::string_view frame = "#8a94a6";
inline constexpr std::string_view jump_frame = "#b8892b";
inline constexpr std::string_view jump_ground = "#fff3d1";
inline constexpr std::string_view lost = "#a3a8b0";
inline constexpr std::string_view terminal = "#374151";
}  // namespace colour

/// `text` so that an HTML-like label shows just that, in one line.
[[nodiscard]] std::string in_label(std::string_view text);

/// `text` so that a tooltip, of a node or of a cell, shows just that; with its line ends.
[[nodiscard]] std::string in_tooltip(std::string_view text);

/// At most `characters` characters of `utf8`; the middle gives way to "…", since paths tell at both ends.
[[nodiscard]] std::string shortened(std::string_view utf8, std::size_t characters);

/// The same for prose: its first sentence, of which the end gives way.
[[nodiscard]] std::string beginning_of(std::string_view utf8, std::size_t characters);

// Parts of an HTML-like label around what is marked up already. An empty part stays empty: the language has no empty
// spans.
[[nodiscard]] std::string coloured(std::string_view colour, const std::string& markup);
[[nodiscard]] std::string bold(const std::string& markup);
[[nodiscard]] std::string italic(const std::string& markup);

}  // namespace graph
