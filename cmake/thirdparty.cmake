# Third-party parts, all from Debian. Headers are copied beside the build: the windows compiler must not see
# /usr/include as a whole.
set(KY_THIRDPARTY "${CMAKE_BINARY_DIR}/thirdparty")
function(ky_third_party_headers name)
  file(COPY ${ARGN} DESTINATION "${KY_THIRDPARTY}/${name}")
  add_library(ky_${name} INTERFACE)
  target_include_directories(ky_${name} SYSTEM INTERFACE "${KY_THIRDPARTY}/${name}")
endfunction()

ky_third_party_headers(picojson /usr/include/picojson.h)
# For every source alike: its inline functions differ with it.
target_compile_definitions(ky_picojson INTERFACE PICOJSON_USE_INT64)
ky_third_party_headers(cli11 /usr/include/CLI)

find_package(Threads REQUIRED)

# From source, so that it is built like the tests: with sanitizers, or for Windows.
add_library(ky_googletest STATIC EXCLUDE_FROM_ALL
  /usr/src/googletest/googletest/src/gtest-all.cc
  /usr/src/googletest/googlemock/src/gmock-all.cc)
target_include_directories(ky_googletest SYSTEM
  PUBLIC /usr/src/googletest/googletest/include /usr/src/googletest/googlemock/include
  PRIVATE /usr/src/googletest/googletest /usr/src/googletest/googlemock)
target_compile_options(ky_googletest PRIVATE -w)
target_link_libraries(ky_googletest PUBLIC Threads::Threads)
