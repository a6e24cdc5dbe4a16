# KY_SCRIPT_TOOL_COMMAND and KY_SCRIPT_TOOL_DEPENDS: how this build compiles a plain script, as in
#   add_custom_command(OUTPUT out COMMAND ${KY_SCRIPT_TOOL_COMMAND} IN KEY OUT DEPENDS ${KY_SCRIPT_TOOL_DEPENDS} ...)
# The program runs while building, so it is always a native one: the build's own, the one that is given, or one that a
# nested build makes.
set(KY_SCRIPT_TOOL "" CACHE FILEPATH "A native ky_script_tool for the windows build; empty to build one")

if(KY_PLATFORM STREQUAL "native")
  set(KY_SCRIPT_TOOL_COMMAND ky_script_tool)
  set(KY_SCRIPT_TOOL_DEPENDS ky_script_tool)
elseif(KY_SCRIPT_TOOL)
  set(KY_SCRIPT_TOOL_COMMAND "${KY_SCRIPT_TOOL}")
  set(KY_SCRIPT_TOOL_DEPENDS "${KY_SCRIPT_TOOL}")
else()
  include(ExternalProject)
  set(tools "${CMAKE_BINARY_DIR}/native-tools")
  set(KY_SCRIPT_TOOL_COMMAND "${tools}/tools/ky/ky_script_tool")
  # It has its own knowledge of what is out of date, so it is asked in every build.
  ExternalProject_Add(ky_native_tools
    SOURCE_DIR "${PROJECT_SOURCE_DIR}"
    BINARY_DIR "${tools}"
    PREFIX "${CMAKE_BINARY_DIR}/native-tools-steps"
    CMAKE_ARGS -DKY_PLATFORM=native -DCMAKE_BUILD_TYPE=RelWithDebInfo
    BUILD_COMMAND "${CMAKE_COMMAND}" --build <BINARY_DIR> --target ky_script_tool
    BUILD_ALWAYS ON
    BUILD_BYPRODUCTS "${KY_SCRIPT_TOOL_COMMAND}"
    INSTALL_COMMAND ""
    EXCLUDE_FROM_ALL ON)
  set(KY_SCRIPT_TOOL_DEPENDS "${KY_SCRIPT_TOOL_COMMAND}" ky_native_tools)
endif()
