#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// The bytes of log files, for writer and reader. docs/log-format.md tells them with examples. All integers are little
/// endian.
namespace diagnostics::log_format {

// Names: [label.]TIME.THREAD[.v2].bin of a thread's file, [label.][tag]TIME.kyinstall[.v2].bin of the merged one. The
// writer's formats take label and tag, time, thread, and the suffix; the words are what the reader takes them apart by.
inline constexpr wchar_t thread_file_name[] = L"%s%I64u.%lu%s.bin";
inline constexpr wchar_t merged_file_name[] = L"%s%I64u.kyinstall%s.bin";
inline constexpr wchar_t sealed_suffix[] = L".v2";
inline constexpr std::string_view extension_word = ".bin";
inline constexpr std::string_view sealed_word = ".v2";
inline constexpr std::string_view merged_word = "kyinstall";
inline constexpr std::size_t name_room = 50;  // characters, with the terminator
inline constexpr std::size_t path_room = 260;

// The sealed form: a key header, then records. Each is a length of 4 bytes and as many bytes.
inline constexpr std::size_t length_size = 4;

// The wrapped key's content: BCRYPT_KEY_DATA_BLOB_HEADER and the key.
inline constexpr std::uint32_t key_blob_magic = 0x4D42444B;
inline constexpr std::uint32_t key_blob_version = 1;
inline constexpr std::size_t key_blob_header_size = 12;

// Every line begins "[hh:mm:ss:mmm] ".
inline constexpr std::size_t time_stamp_length = 15;

// The first record of a thread: its id, a description, and the day, month and year. It has no line end of its own.
inline constexpr wchar_t first_record[] =
    L"=========== Started logging for thread %u (%s) on %02ld.%02ld.%02ld ===========";
inline constexpr std::string_view first_record_begin = "=========== Started logging for thread ";

// The fall-back form: lines of UTF-8 that end in CR LF, a byte order mark at the file's start.
inline constexpr std::string_view fall_back_key = "5D20CA71B3E84f96A17EC4409D8266B1";
inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
inline constexpr std::string_view line_end = "\r\n";

// The merge copies by pieces of so many bytes.
inline constexpr std::size_t merge_piece = 1000;

}  // namespace diagnostics::log_format
