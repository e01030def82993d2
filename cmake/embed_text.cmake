# Writes a C++ source that defines `FUNCTION` returning the text of INPUT.
# Run as: cmake -DINPUT=... -DOUTPUT=... -DFUNCTION=... -DHEADER=... -P embed_text.cmake
file(READ "${INPUT}" _text)
set(_delimiter "vantu_embedded")
string(FIND "${_text}" ")${_delimiter}\"" _clash)
if(NOT _clash EQUAL -1)
  message(FATAL_ERROR "${INPUT} contains the raw-string delimiter")
endif()
file(WRITE "${OUTPUT}.tmp"
  "// Generated from ${INPUT}; do not edit.\n#include \"${HEADER}\"\n\nnamespace vantu {\n\n"
  "std::string_view ${FUNCTION}() {\n  static constexpr char kText[] = R\"${_delimiter}(${_text})${_delimiter}\";\n"
  "  return {kText, sizeof kText - 1};\n}\n\n}  // namespace vantu\n")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
