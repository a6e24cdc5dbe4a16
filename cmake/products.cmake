# What is shipped to Windows. Natively there is none of it, and both functions do nothing.

set(KY_HAS_REAL_WORLD FALSE)
if(KY_PLATFORM STREQUAL "win32")
  set(KY_HAS_REAL_WORLD TRUE)
endif()

# ky_add_product(folder): a folder whose target only Windows has.
function(ky_add_product folder)
  if(KY_HAS_REAL_WORLD)
    add_subdirectory(${folder})
  endif()
endfunction()

# Marks the factories as exports of the library.
set(KY_EXPORT_ATTRIBUTE "")
if(KY_HAS_REAL_WORLD)
  set(KY_EXPORT_ATTRIBUTE "__declspec(dllexport)")
endif()

# ky_windows_resources(target FILE name DESCRIPTION text TYPE 1|2 MANIFEST_ID id MANIFEST file): the documents, icon,
# version and manifest in Windows' own form, for a program (type 1) or library (type 2) of the windows build.
function(ky_windows_resources target)
  if(NOT KY_HAS_REAL_WORLD)
    return()
  endif()
  cmake_parse_arguments(arg "" "FILE;DESCRIPTION;TYPE;MANIFEST_ID;MANIFEST" "" ${ARGN})
  set(KY_FILE_NAME "${arg_FILE}")
  set(KY_FILE_DESCRIPTION "${arg_DESCRIPTION}")
  set(KY_FILE_TYPE "${arg_TYPE}")
  set(KY_MANIFEST_ID "${arg_MANIFEST_ID}")
  set(KY_RESOURCES "${PROJECT_SOURCE_DIR}/resources")
  set(KY_MANIFEST "${KY_RESOURCES}/${arg_MANIFEST}")
  set(KY_SCRIPT_DOCUMENT "${PROJECT_BINARY_DIR}/resources/script.bin")
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  configure_file("${KY_RESOURCES}/documents.rc.in" "${file}" @ONLY)
  target_sources(${target} PRIVATE "${file}")
  set_source_files_properties("${file}" PROPERTIES
    OBJECT_DEPENDS "${KY_SCRIPT_DOCUMENT};${KY_RESOURCES}/config.xml;${KY_MANIFEST}")
  add_dependencies(${target} ky_edition)
endfunction()
