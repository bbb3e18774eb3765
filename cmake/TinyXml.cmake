# TinyXML::TinyXML, the XML library as the distribution builds it (with the STL interface).
find_path(TINYXML_INCLUDE_DIR tinyxml.h REQUIRED)
find_library(TINYXML_LIBRARY tinyxml REQUIRED)
add_library(TinyXML::TinyXML UNKNOWN IMPORTED)
set_target_properties(
  TinyXML::TinyXML
  PROPERTIES IMPORTED_LOCATION ${TINYXML_LIBRARY}
             INTERFACE_INCLUDE_DIRECTORIES ${TINYXML_INCLUDE_DIR}
             INTERFACE_COMPILE_DEFINITIONS TIXML_USE_STL)
