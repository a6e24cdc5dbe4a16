# ky_library(name SOURCES ... LINKS ... [TESTS ...]): one room of the house. It sees the repository's root and
# include/, and links only what stands below it. Its unit tests, which lie beside the units, join the test program.
function(ky_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LINKS;TESTS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(${name} PUBLIC ${arg_LINKS})
  if(arg_TESTS)
    set_property(GLOBAL APPEND PROPERTY KY_TESTED_LIBRARIES ${name})
    ky_unit_tests(${arg_TESTS})
  endif()
endfunction()

# ky_unit_tests(file ...): files of the program ky_tests, given relative to the calling folder.
function(ky_unit_tests)
  foreach(file IN LISTS ARGN)
    set_property(GLOBAL APPEND PROPERTY KY_UNIT_TESTS "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
  endforeach()
endfunction()

# ky_test_program(name SOURCES ... LINKS ... [NEEDS fixture ...] [LIMIT seconds]): a GoogleTest program whose cases ctest
# runs one by one, after the tests that set up the fixtures, each for at most so long (180).
function(ky_test_program name)
  cmake_parse_arguments(arg "" "LIMIT" "SOURCES;LINKS;NEEDS" ${ARGN})
  if(NOT arg_LIMIT)
    set(arg_LIMIT 180)
  endif()
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")
  target_link_libraries(${name} PRIVATE ${arg_LINKS} ky_googletest)
  # For files that tests compare with.
  target_compile_definitions(${name} PRIVATE "KY_SOURCE_FOLDER=\"${PROJECT_SOURCE_DIR}\""
    "KY_LOG_PUBLIC_KEY=\"${KY_LOG_PUBLIC_KEY}\"")
  include(GoogleTest)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120
    PROPERTIES TIMEOUT ${arg_LIMIT} FIXTURES_REQUIRED "${arg_NEEDS}")
endfunction()
