# Writes the OpenAPI document (IN) as a C++ source (OUT) defining nimbara::serve::openapi_document(),
# so that the program serves it without a file beside it.
file(READ ${IN} text)
string(FIND "${text}" ")openapi\"" clash)
if(NOT clash EQUAL -1)
  message(FATAL_ERROR "${IN} holds the raw string's closing sequence")
endif()
file(WRITE ${OUT} "#include <string_view>\nnamespace nimbara::serve {\nstd::string_view openapi_document()\n{\n    static constexpr std::string_view document = R\"openapi(${text})openapi\";\n    return document;\n}\n}  // namespace nimbara::serve\n")
