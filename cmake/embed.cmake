# cmake -DOUTPUT=x.cpp -DHEADER=h -DNAMESPACE=n -DNAMES=a;b -DFILES=f;g -P embed.cmake
# Writes a source that gives each file's bytes through a function of its name.
set(text "#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n\nnamespace {\n\n")
set(functions "")
foreach(name file IN ZIP_LISTS NAMES FILES)
  file(READ "${file}" hex HEX)
  string(LENGTH "${hex}" digits)
  math(EXPR size "${digits} / 2")
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "(................................................................................)" "\\1\n" bytes "${bytes}")
  string(APPEND text "const unsigned char ${name}_bytes[] = {\n${bytes}};\n\n")
  string(APPEND functions
    "std::string_view ${name}() { return {reinterpret_cast<const char*>(${name}_bytes), ${size}}; }\n")
endforeach()
file(WRITE "${OUTPUT}" "${text}}  // namespace\n\n${functions}\n}  // namespace ${NAMESPACE}\n")
