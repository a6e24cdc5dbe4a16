#include <algorithm>
#include <iterator>

#include "platform/machine/code_pages.h"
#include "platform/ports/codes.h"
#include "platform/ports/signatures.h"

namespace machine {

namespace code = ports::code;

namespace {

constexpr ports::ErrorCode as_code(ports::Result result) {
  return static_cast<ports::ErrorCode>(result);
}

constexpr struct {
  ports::ErrorCode code;
  const char* text;
} messages[] = {
    {code::success, "The operation completed successfully."},
    {code::invalid_function, "Incorrect function."},
    {code::file_not_found, "The system cannot find the file specified."},
    {code::path_not_found, "The system cannot find the path specified."},
    {code::access_denied, "Access is denied."},
    {code::invalid_handle, "The handle is invalid."},
    {code::not_enough_memory, "Not enough memory resources are available to process this command."},
    {code::invalid_data, "The data is invalid."},
    {code::out_of_memory, "Not enough memory resources are available to complete this operation."},
    {code::no_more_files, "There are no more files."},
    {code::write_fault, "The system cannot write to the specified device."},
    {code::read_fault, "The system cannot read from the specified device."},
    {code::gen_failure, "A device attached to the system is not functioning."},
    {code::sharing_violation, "The process cannot access the file because it is being used by another process."},
    {code::not_supported, "The request is not supported."},
    {code::invalid_parameter, "The parameter is incorrect."},
    {code::disk_full, "There is not enough space on the disk."},
    {code::insufficient_buffer, "The data area passed to a system call is too small."},
    {code::invalid_name, "The filename, directory name, or volume label syntax is incorrect."},
    {code::module_not_found, "The specified module could not be found."},
    {code::procedure_not_found, "The specified procedure could not be found."},
    {code::directory_not_empty, "The directory is not empty."},
    {code::already_exists, "Cannot create a file when that file already exists."},
    {code::bad_exe_format, "%1 is not a valid Win32 application."},
    {code::wait_timeout, "The wait operation timed out."},
    {code::directory_name_invalid, "The directory name is invalid."},
    {code::partial_copy, "Only part of a ReadProcessMemory or WriteProcessMemory request was completed."},
    {code::mr_mid_not_found, "The system cannot find message text for message number 0x%1 in the message file for %2."},
    {code::elevation_required, "The requested operation requires elevation."},
    {code::not_found, "Element not found."},
    {code::cancelled, "The operation was canceled by the user."},
    {code::not_all_assigned, "Not all privileges or groups referenced are assigned to the caller."},
    {code::no_such_privilege, "A specified privilege does not exist."},
    {code::privilege_not_held, "A required privilege is not held by the client."},
    {code::internal_error, "An internal error occurred."},
    {code::resource_data_not_found, "The specified image file did not contain a resource section."},
    {code::resource_type_not_found, "The specified resource type cannot be found in the image file."},
    {code::resource_name_not_found, "The specified resource name cannot be found in the image file."},
    {code::certificate_not_found, "Cannot find object or property."},
    {code::no_match_when_query, "Cannot find the requested object."},
    {as_code(code::pointer), "Invalid pointer"},
    {as_code(code::fail), "Unspecified error"},
    {as_code(code::class_not_registered), "Class not registered"},
    {as_code(ports::trust::no_signature), "No signature was present in the subject."},
    {as_code(ports::trust::bad_digest), "The digital signature of the object did not verify."},
};

}  // namespace

std::string CodePages::system_message(ports::ErrorCode code) {
  const auto* const found = std::find_if(std::begin(messages), std::end(messages),
                                         [code](const auto& message) { return message.code == code; });
  return found == std::end(messages) ? std::string() : std::string(found->text) + "\r\n";
}

}  // namespace machine
