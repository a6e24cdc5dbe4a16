#pragma once

#include "platform/ports/types.h"

/// Windows error codes and COM results that the logic names or that the machine answers with.
namespace ports::code {

inline constexpr ErrorCode success = 0;
inline constexpr ErrorCode invalid_function = 1;
inline constexpr ErrorCode file_not_found = 2;
inline constexpr ErrorCode path_not_found = 3;
inline constexpr ErrorCode access_denied = 5;
inline constexpr ErrorCode invalid_handle = 6;
inline constexpr ErrorCode not_enough_memory = 8;
inline constexpr ErrorCode invalid_data = 13;
inline constexpr ErrorCode out_of_memory = 14;
inline constexpr ErrorCode not_same_device = 17;
inline constexpr ErrorCode no_more_files = 18;
inline constexpr ErrorCode crc = 23;
inline constexpr ErrorCode write_fault = 29;
inline constexpr ErrorCode read_fault = 30;
inline constexpr ErrorCode gen_failure = 31;
inline constexpr ErrorCode sharing_violation = 32;
inline constexpr ErrorCode not_supported = 50;
inline constexpr ErrorCode bad_network_path = 53;
inline constexpr ErrorCode file_exists = 80;
inline constexpr ErrorCode invalid_parameter = 87;
inline constexpr ErrorCode buffer_overflow = 111;
inline constexpr ErrorCode disk_full = 112;
inline constexpr ErrorCode insufficient_buffer = 122;
inline constexpr ErrorCode invalid_name = 123;
inline constexpr ErrorCode module_not_found = 126;
inline constexpr ErrorCode procedure_not_found = 127;
inline constexpr ErrorCode directory_not_empty = 145;
inline constexpr ErrorCode bad_path_name = 161;
inline constexpr ErrorCode already_exists = 183;
inline constexpr ErrorCode bad_exe_format = 193;
inline constexpr ErrorCode filename_too_long = 206;
inline constexpr ErrorCode more_data = 234;
inline constexpr ErrorCode wait_timeout = 258;
inline constexpr ErrorCode no_more_items = 259;
inline constexpr ErrorCode directory_name_invalid = 267;
inline constexpr ErrorCode partial_copy = 299;
inline constexpr ErrorCode mr_mid_not_found = 317;
inline constexpr ErrorCode stopped_on_symlink = 681;
inline constexpr ErrorCode elevation_required = 740;
inline constexpr ErrorCode no_unicode_translation = 1113;
inline constexpr ErrorCode dll_init_failed = 1114;
inline constexpr ErrorCode cannot_resolve_filename = 1921;
inline constexpr ErrorCode bad_database = 1009;
inline constexpr ErrorCode key_deleted = 1018;
inline constexpr ErrorCode key_has_children = 1020;
inline constexpr ErrorCode child_must_be_volatile = 1021;
inline constexpr ErrorCode not_found = 1168;
inline constexpr ErrorCode cancelled = 1223;
inline constexpr ErrorCode not_all_assigned = 1300;
inline constexpr ErrorCode no_such_privilege = 1313;
inline constexpr ErrorCode privilege_not_held = 1314;
inline constexpr ErrorCode internal_error = 1359;
inline constexpr ErrorCode unsupported_type = 1630;
inline constexpr ErrorCode invalid_user_buffer = 1784;
inline constexpr ErrorCode resource_data_not_found = 1812;
inline constexpr ErrorCode resource_type_not_found = 1813;
inline constexpr ErrorCode resource_name_not_found = 1814;
inline constexpr ErrorCode not_a_reparse_point = 4390;
inline constexpr ErrorCode certificate_not_found = 0x80092004;  // CRYPT_E_NOT_FOUND
inline constexpr ErrorCode no_match_when_query = 0x80092009;    // CRYPT_E_NO_MATCH
inline constexpr ErrorCode bad_cipher_data = 0x80090005;  // NTE_BAD_DATA
inline constexpr ErrorCode bad_cipher_key = 0x80090003;   // NTE_BAD_KEY

inline constexpr Result ok = 0;
inline constexpr Result nothing = 1;  // S_FALSE
inline constexpr Result pointer = static_cast<Result>(0x80004003);
inline constexpr Result fail = static_cast<Result>(0x80004005);
inline constexpr Result no_memory = static_cast<Result>(0x8007000E);
inline constexpr Result class_not_registered = static_cast<Result>(0x80040154);

}  // namespace ports::code
