# The parser of separated values, as Vantor::LibCsv. Debian ships neither a CMake package nor a pkg-config file for it.
find_path(LIBCSV_INCLUDE csv.h REQUIRED)
find_library(LIBCSV_LIBRARY csv REQUIRED)
add_library(Vantor::LibCsv UNKNOWN IMPORTED)
set_target_properties(Vantor::LibCsv PROPERTIES
  IMPORTED_LOCATION "${LIBCSV_LIBRARY}"
  INTERFACE_INCLUDE_DIRECTORIES "${LIBCSV_INCLUDE}")
