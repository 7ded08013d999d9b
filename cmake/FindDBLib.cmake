# FreeTDS db-lib: the imported target FreeTDS::dblib.
find_path(DBLIB_INCLUDE_DIR sybdb.h REQUIRED)
find_library(DBLIB_LIBRARY sybdb REQUIRED)
add_library(FreeTDS::dblib UNKNOWN IMPORTED)
set_target_properties(FreeTDS::dblib PROPERTIES
  IMPORTED_LOCATION ${DBLIB_LIBRARY}
  INTERFACE_INCLUDE_DIRECTORIES ${DBLIB_INCLUDE_DIR})
