# The editor component, as Vantor::QScintilla. Debian ships no CMake package for it.
find_path(QSCINTILLA_INCLUDE Qsci/qsciscintilla.h PATH_SUFFIXES x86_64-linux-gnu/qt6 qt6 REQUIRED)
find_library(QSCINTILLA_LIBRARY qscintilla2_qt6 REQUIRED)
add_library(Vantor::QScintilla UNKNOWN IMPORTED)
set_target_properties(Vantor::QScintilla PROPERTIES
  IMPORTED_LOCATION "${QSCINTILLA_LIBRARY}"
  INTERFACE_INCLUDE_DIRECTORIES "${QSCINTILLA_INCLUDE}"
  INTERFACE_COMPILE_DEFINITIONS QSCINTILLA_DLL)
target_link_libraries(Vantor::QScintilla INTERFACE Qt6::Widgets Qt6::PrintSupport)
