#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/ports/codes.h"

// clang-format off
/// Every port operation that can fail: OPERATION(name here, name for people, the codes of its contract...). COM results
/// and statuses stand among the codes as they are, in 32 bits.
#define KY_FAULT_OPERATIONS(OPERATION) \
  OPERATION(files_open, "files.open", access_denied, file_not_found, path_not_found, sharing_violation, file_exists, \
            invalid_name) \
  OPERATION(files_read, "files.read", read_fault, access_denied, invalid_handle) \
  OPERATION(files_write, "files.write", disk_full, access_denied, invalid_handle) \
  OPERATION(files_flush, "files.flush", write_fault, access_denied, invalid_handle) \
  OPERATION(files_information, "files.information", invalid_handle, access_denied) \
  OPERATION(files_identity, "files.identity", invalid_parameter, invalid_handle) \
  OPERATION(files_case_sensitivity, "files.case_sensitivity", status_invalid_info_class, status_invalid_parameter, \
            status_invalid_handle) \
  OPERATION(files_mark_deleted, "files.mark_deleted", access_denied, directory_not_empty, invalid_handle) \
  OPERATION(files_set_attributes_of, "files.set_attributes_of", access_denied, invalid_handle) \
  OPERATION(files_rename, "files.rename", access_denied, path_not_found, not_same_device, invalid_handle) \
  OPERATION(files_attributes, "files.attributes", access_denied, file_not_found, path_not_found, invalid_name) \
  OPERATION(files_set_attributes, "files.set_attributes", access_denied, file_not_found, path_not_found, invalid_name) \
  OPERATION(files_exists, "files.exists", access_denied, file_not_found, path_not_found, invalid_name) \
  OPERATION(files_remove, "files.remove", access_denied, sharing_violation, file_not_found, path_not_found, \
            invalid_name) \
  OPERATION(files_remove_folder, "files.remove_folder", directory_not_empty, sharing_violation, \
            directory_name_invalid, access_denied, file_not_found, path_not_found, invalid_name) \
  OPERATION(files_create_folder, "files.create_folder", access_denied, already_exists, path_not_found, invalid_name) \
  OPERATION(files_create_link, "files.create_link", privilege_not_held, already_exists, access_denied, \
            path_not_found, invalid_name) \
  OPERATION(files_move, "files.move", access_denied, sharing_violation, already_exists, file_not_found, \
            path_not_found, invalid_name, invalid_parameter) \
  OPERATION(files_temp_folder, "files.temp_folder", path_not_found, not_enough_memory) \
  OPERATION(files_temp_file, "files.temp_file", access_denied, directory_name_invalid) \
  OPERATION(files_list, "files.list", access_denied, no_more_files, invalid_handle, invalid_parameter) \
  OPERATION(files_find_first, "files.find_first", access_denied, file_not_found, path_not_found, invalid_name) \
  OPERATION(files_find_next, "files.find_next", no_more_files, invalid_handle) \
  OPERATION(files_find_close, "files.find_close", invalid_handle) \
  OPERATION(registry_open, "registry.open", access_denied, file_not_found, invalid_handle, key_deleted) \
  OPERATION(registry_create, "registry.create", access_denied, child_must_be_volatile, invalid_handle, key_deleted) \
  OPERATION(registry_close, "registry.close", invalid_handle) \
  OPERATION(registry_subkey, "registry.subkey", access_denied, no_more_items, invalid_handle, key_deleted) \
  OPERATION(registry_value_name, "registry.value_name", access_denied, no_more_items, invalid_handle, key_deleted) \
  OPERATION(registry_query, "registry.query", access_denied, file_not_found, invalid_handle, key_deleted) \
  OPERATION(registry_set, "registry.set", access_denied, invalid_handle, key_deleted) \
  OPERATION(registry_remove_value, "registry.remove_value", access_denied, file_not_found, invalid_handle, \
            key_deleted) \
  OPERATION(registry_subkey_within, "registry.subkey_within", access_denied, no_more_items, more_data, \
            invalid_handle, key_deleted) \
  OPERATION(registry_information, "registry.information", access_denied, invalid_handle, key_deleted) \
  OPERATION(registry_get_text, "registry.get_text", file_not_found, unsupported_type, more_data, access_denied, \
            invalid_handle) \
  OPERATION(registry_remove_tree, "registry.remove_tree", access_denied, file_not_found, key_has_children, \
            invalid_handle) \
  OPERATION(registry_load_hive, "registry.load_hive", sharing_violation, file_not_found, bad_database, \
            already_exists, privilege_not_held, access_denied) \
  OPERATION(registry_unload_hive, "registry.unload_hive", access_denied, file_not_found, privilege_not_held, \
            invalid_parameter) \
  OPERATION(registry_remove, "registry.remove", access_denied, invalid_handle, key_deleted) \
  OPERATION(processes_create, "processes.create", file_not_found, directory_name_invalid, bad_exe_format, \
            access_denied, elevation_required) \
  OPERATION(processes_exit_code, "processes.exit_code", invalid_handle, access_denied) \
  OPERATION(processes_terminate, "processes.terminate", access_denied, invalid_handle) \
  OPERATION(processes_shell_execute, "processes.shell_execute", file_not_found, access_denied, cancelled) \
  OPERATION(processes_find_desktop, "processes.find_desktop", result_fail, result_class_not_registered) \
  OPERATION(processes_execute_on_desktop, "processes.execute_on_desktop", result_fail, result_no_memory) \
  OPERATION(inspection_snapshot, "inspection.snapshot", access_denied, not_enough_memory) \
  OPERATION(inspection_first, "inspection.first", no_more_files, invalid_handle) \
  OPERATION(inspection_next, "inspection.next", no_more_files, invalid_handle) \
  OPERATION(inspection_open, "inspection.open", access_denied, invalid_parameter) \
  OPERATION(inspection_is_wow64, "inspection.is_wow64", invalid_handle, access_denied) \
  OPERATION(inspection_image_path, "inspection.image_path", access_denied, invalid_handle) \
  OPERATION(inspection_image_device_path, "inspection.image_device_path", access_denied, insufficient_buffer, \
            invalid_handle) \
  OPERATION(inspection_basic_information, "inspection.basic_information", status_access_denied, \
            status_entry_point_not_found, status_invalid_handle) \
  OPERATION(inspection_read_memory, "inspection.read_memory", partial_copy, access_denied, invalid_handle) \
  OPERATION(tokens_open_own, "tokens.open_own", access_denied) \
  OPERATION(tokens_privilege_value, "tokens.privilege_value", no_such_privilege) \
  OPERATION(tokens_adjust, "tokens.adjust", access_denied, invalid_handle) \
  OPERATION(signatures_verify, "signatures.verify", result_untrusted_root, result_bad_digest, \
            result_subject_not_trusted) \
  OPERATION(signatures_query, "signatures.query", no_match_when_query, file_not_found) \
  OPERATION(signatures_signer_info, "signatures.signer_info", more_data, not_enough_memory) \
  OPERATION(signatures_find_certificate, "signatures.find_certificate", certificate_not_found, not_enough_memory) \
  OPERATION(signatures_serial_number, "signatures.serial_number", invalid_data) \
  OPERATION(com_initialize, "com.initialize", result_fail, result_no_memory, result_changed_mode) \
  OPERATION(com_initialize_security, "com.initialize_security", result_fail, result_security_too_late) \
  OPERATION(tasks_create_service, "tasks.create_service", result_class_not_registered, result_no_memory) \
  OPERATION(tasks_connect, "tasks.connect", result_access_denied, result_fail) \
  OPERATION(tasks_folder, "tasks.folder", result_file_not_found, result_access_denied, not_enough_memory) \
  OPERATION(tasks_task, "tasks.task", result_file_not_found, result_access_denied, not_enough_memory) \
  OPERATION(tasks_name, "tasks.name", result_no_memory, result_fail) \
  OPERATION(tasks_remove, "tasks.remove", result_access_denied, result_file_not_found, not_enough_memory) \
  OPERATION(drivers_inf_location, "drivers.inf_location", not_found, file_not_found, insufficient_buffer) \
  OPERATION(modules_procedure, "modules.procedure", procedure_not_found) \
  OPERATION(modules_load, "modules.load", module_not_found, bad_exe_format, dll_init_failed) \
  OPERATION(modules_free, "modules.free", invalid_handle) \
  OPERATION(modules_file_name, "modules.file_name", insufficient_buffer, module_not_found) \
  OPERATION(resources_find, "resources.find", resource_name_not_found, resource_type_not_found) \
  OPERATION(resources_load, "resources.load", resource_data_not_found, not_enough_memory) \
  OPERATION(resources_size, "resources.size", resource_data_not_found) \
  OPERATION(resources_lock, "resources.lock", resource_data_not_found) \
  OPERATION(environment_folder, "environment.folder", path_not_found, not_enough_memory) \
  OPERATION(environment_dos_device, "environment.dos_device", file_not_found, insufficient_buffer) \
  OPERATION(text_to_wide, "text.to_wide", insufficient_buffer, invalid_parameter) \
  OPERATION(text_to_narrow, "text.to_narrow", insufficient_buffer, invalid_parameter) \
  OPERATION(threads_start, "threads.start", not_enough_memory) \
  OPERATION(waits_create_event, "waits.create_event", path_not_found, invalid_handle) \
  OPERATION(waits_set, "waits.set", invalid_handle) \
  OPERATION(waits_reset, "waits.reset", invalid_handle) \
  OPERATION(waits_wait, "waits.wait", invalid_handle, invalid_parameter) \
  OPERATION(waits_close, "waits.close", invalid_handle) \
  OPERATION(winapi_create_event, "winapi.CreateEventW", path_not_found, invalid_handle) \
  OPERATION(winapi_set_event, "winapi.SetEvent", invalid_handle) \
  OPERATION(winapi_close_handle, "winapi.CloseHandle", invalid_handle) \
  OPERATION(winapi_to_wide, "winapi.MultiByteToWideChar", insufficient_buffer, invalid_parameter) \
  OPERATION(cipher_import_key, "cipher.import_key", bad_cipher_key, not_enough_memory) \
  OPERATION(cipher_decode_base64, "cipher.decode_base64", invalid_data, more_data) \
  OPERATION(cipher_decrypt, "cipher.decrypt", bad_cipher_data, bad_cipher_key) \
  OPERATION(cipher_encrypt, "cipher.encrypt", bad_cipher_key, not_enough_memory) \
  OPERATION(key_maker_random, "key_maker.random", gen_failure) \
  OPERATION(key_maker_rsa_pair, "key_maker.rsa_pair", gen_failure, not_enough_memory) \
  OPERATION(xml_parse, "xml.parse", result_no_memory, result_fail, result_nothing) \
  OPERATION(xml_create_document, "xml.create_document", result_class_not_registered, result_no_memory) \
  OPERATION(xml_load_text, "xml.load_text", result_nothing, result_no_memory) \
  OPERATION(xml_load_bytes, "xml.load_bytes", result_nothing, result_no_memory) \
  OPERATION(xml_select_single_node, "xml.select_single_node", result_fail, result_nothing) \
  OPERATION(xml_node_type, "xml.node_type", result_fail) \
  OPERATION(xml_root, "xml.root", result_fail, result_nothing) \
  OPERATION(xml_first_element, "xml.first_element", result_fail) \
  OPERATION(xml_next_element, "xml.next_element", result_fail) \
  OPERATION(xml_name, "xml.name", result_no_memory, result_fail) \
  OPERATION(xml_text, "xml.text", result_no_memory, result_fail) \
  OPERATION(xml_attributes, "xml.attributes", result_fail, result_no_memory) \
  OPERATION(xml_length, "xml.length", result_fail) \
  OPERATION(xml_item, "xml.item", result_fail, result_no_memory) \
  OPERATION(xml_named_item, "xml.named_item", result_fail, result_nothing) \
  OPERATION(cng_open_algorithm, "cng.open_algorithm", status_not_found, status_no_memory) \
  OPERATION(cng_random, "cng.random", status_unsuccessful, status_invalid_handle) \
  OPERATION(cng_generate_key, "cng.generate_key", status_invalid_parameter, status_no_memory, status_invalid_handle) \
  OPERATION(cng_import_public_key, "cng.import_public_key", status_invalid_parameter, status_no_memory) \
  OPERATION(cng_import_private_key, "cng.import_private_key", status_invalid_parameter, status_no_memory) \
  OPERATION(cng_block_length, "cng.block_length", status_invalid_handle, status_not_supported) \
  OPERATION(cng_export_key, "cng.export_key", status_not_supported, status_buffer_too_small) \
  OPERATION(cng_encrypt, "cng.encrypt", status_invalid_parameter, status_no_memory, status_buffer_too_small) \
  OPERATION(cng_decrypt, "cng.decrypt", status_data_error, status_invalid_buffer_size, status_no_memory) \
  OPERATION(log_streams_open, "log_streams.open", access_denied, sharing_violation, path_not_found) \
  OPERATION(log_streams_write, "log_streams.write", disk_full, access_denied) \
  OPERATION(log_streams_flush, "log_streams.flush", disk_full, write_fault) \
  OPERATION(log_streams_read, "log_streams.read", read_fault) \
  OPERATION(log_streams_skip, "log_streams.skip", invalid_handle) \
  OPERATION(crashes_write_dump, "crashes.write_dump", disk_full, invalid_handle)
// clang-format on

namespace faults {

enum class Operation : std::uint8_t {
#define KY_FAULT_ENUMERATE(identifier, ...) identifier,
  KY_FAULT_OPERATIONS(KY_FAULT_ENUMERATE)
#undef KY_FAULT_ENUMERATE
};

/// What is known of an operation before it is called.
struct Contract {
  Operation operation;
  std::string_view name;
  /// The codes with which it may fail, the likeliest first; never empty.
  std::span<const ports::ErrorCode> codes;
};

/// All operations, each at its own position.
[[nodiscard]] std::span<const Contract> contracts();
[[nodiscard]] const Contract& contract(Operation operation);

/// True for the operations that give something back (closings): a failed call leaves it held.
[[nodiscard]] bool gives_back(Operation operation);

}  // namespace faults
