# The keys that the products are built with. A product build refuses those that everybody knows.
option(KY_PRODUCT "Build what is shipped: refuses the development keys" OFF)
set(KY_SCRIPT_KEY "${PROJECT_SOURCE_DIR}/keys/development/script.key" CACHE FILEPATH
    "The key that scripts are enciphered with, from `ky keys new`")

set(KY_LOG_PUBLIC_KEY "${PROJECT_SOURCE_DIR}/keys/development/log-public.pem" CACHE FILEPATH
    "The public key that logs are sealed with, from `ky keys new`")

# ky_read_key(variable file label out): the base64 digits, without padding, between the two lines of a key's file.
function(ky_read_key variable file label out)
  if(NOT EXISTS "${file}")
    message(FATAL_ERROR "${variable}: there is no file ${file}")
  endif()
  file(READ "${file}" text)
  set(${out} "" PARENT_SCOPE)
  if(text MATCHES "^-----BEGIN ${label}-----[ \t\r\n]+([A-Za-z0-9+/ \t\r\n]+=*)[ \t\r\n]+-----END ${label}-----[ \t\r\n]*$")
    string(REGEX REPLACE "[ \t\r\n=]" "" digits "${CMAKE_MATCH_1}")
    set(${out} "${digits}" PARENT_SCOPE)
  endif()
endfunction()

# ky_decode_base64(digits out): the bytes as a list of two hexadecimal digits each.
function(ky_decode_base64 digits out)
  set(alphabet "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/")
  set(bytes)
  set(bits 0)
  set(count 0)
  string(LENGTH "${digits}" length)
  math(EXPR last "${length} - 1")
  foreach(position RANGE ${last})
    string(SUBSTRING "${digits}" ${position} 1 digit)
    string(FIND "${alphabet}" "${digit}" value)
    math(EXPR bits "(${bits} << 6 | ${value}) & 0xFFFF")
    math(EXPR count "${count} + 6")
    if(count GREATER_EQUAL 8)
      math(EXPR count "${count} - 8")
      math(EXPR byte "${bits} >> ${count} & 255 | 256" OUTPUT_FORMAT HEXADECIMAL)
      string(SUBSTRING "${byte}" 3 2 byte)
      list(APPEND bytes ${byte})
    endif()
  endforeach()
  set(${out} "${bytes}" PARENT_SCOPE)
endfunction()

# ky_bytes_for_cpp(bytes out): "0x01, 0x02, ...".
function(ky_bytes_for_cpp bytes out)
  list(TRANSFORM bytes PREPEND "0x")
  list(JOIN bytes ", " joined)
  set(${out} "${joined}" PARENT_SCOPE)
endfunction()

# ky_read_script_key(file out): the key's 32 bytes for C++.
function(ky_read_script_key file out)
  ky_read_key(KY_SCRIPT_KEY "${file}" "KY SCRIPT KEY" digits)
  if(NOT digits)
    message(FATAL_ERROR "KY_SCRIPT_KEY: ${file} is not a script key; make one with `ky keys new`")
  endif()
  string(LENGTH "${digits}" length)
  if(NOT length EQUAL 43)
    message(FATAL_ERROR "KY_SCRIPT_KEY: the key in ${file} has not 32 bytes")
  endif()
  ky_decode_base64("${digits}" bytes)
  ky_bytes_for_cpp("${bytes}" joined)
  set(${out} "${joined}" PARENT_SCOPE)
endfunction()

# ky_read_log_key(file out): the 128 bytes of the modulus for C++. Logs have keys of 1024 bits with the exponent 65537,
# so that all of the SubjectPublicKeyInfo but the modulus is known.
function(ky_read_log_key file out)
  ky_read_key(KY_LOG_PUBLIC_KEY "${file}" "PUBLIC KEY" digits)
  if(NOT digits)
    message(FATAL_ERROR "KY_LOG_PUBLIC_KEY: ${file} is not a public key in PEM form; make a pair with `ky keys new`")
  endif()
  ky_decode_base64("${digits}" bytes)
  list(JOIN bytes "" der)
  string(TOUPPER "${der}" der)
  list(LENGTH bytes size)
  if(NOT size EQUAL 162 OR NOT der MATCHES "^30819F300D06092A864886F70D010101050003818D0030818902818100[89A-F].*0203010001$")
    message(FATAL_ERROR "KY_LOG_PUBLIC_KEY: ${file} is not an RSA key of 1024 bits with the exponent 65537")
  endif()
  list(SUBLIST bytes 29 128 modulus)
  ky_bytes_for_cpp("${modulus}" joined)
  set(${out} "${joined}" PARENT_SCOPE)
endfunction()

ky_read_script_key("${KY_SCRIPT_KEY}" KY_SCRIPT_KEY_BYTES)
ky_read_script_key("${PROJECT_SOURCE_DIR}/keys/development/script.key" development_bytes)
if(KY_PRODUCT AND KY_SCRIPT_KEY_BYTES STREQUAL development_bytes)
  message(FATAL_ERROR "A product is not built with the development script key: make keys with `ky keys new DIR` and "
                      "configure with -DKY_SCRIPT_KEY=DIR/script.key")
endif()

ky_read_log_key("${KY_LOG_PUBLIC_KEY}" KY_LOG_MODULUS_BYTES)
ky_read_log_key("${PROJECT_SOURCE_DIR}/keys/development/log-public.pem" development_bytes)
if(KY_PRODUCT AND KY_LOG_MODULUS_BYTES STREQUAL development_bytes)
  message(FATAL_ERROR "A product is not built with the development log key: make keys with `ky keys new DIR` and "
                      "configure with -DKY_LOG_PUBLIC_KEY=DIR/log-public.pem")
endif()
# A changed key is read anew.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${KY_SCRIPT_KEY}" "${KY_LOG_PUBLIC_KEY}")
