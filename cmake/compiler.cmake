# Settings that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

add_compile_options(-Wall -Wextra -Werror -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor
                    -Wold-style-cast -Wcast-align -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Texts are copied and compared unit by unit all over: let the compiler take many at a time.
  add_compile_options(-fvect-cost-model=dynamic)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options(-Wthread-safety)
endif()

set(KY_SANITIZE "" CACHE STRING "Sanitizers of the native build, as for -fsanitize")
if(KY_SANITIZE)
  add_compile_options(-fsanitize=${KY_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KY_SANITIZE})
endif()
option(KY_FUZZ "Build the fuzz targets" OFF)
if(KY_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
