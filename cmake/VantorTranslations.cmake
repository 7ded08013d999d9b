# The catalogue of the programs' texts in English, which translators begin with: build the target "translations". It needs
# Qt's lupdate and lrelease (Debian: qt6-l10n-tools).
find_program(LUPDATE lupdate PATHS /usr/lib/qt6/bin NO_DEFAULT_PATH)
find_program(LRELEASE lrelease PATHS /usr/lib/qt6/bin NO_DEFAULT_PATH)
if(NOT LUPDATE OR NOT LRELEASE)
  message(STATUS "There is no lupdate (qt6-l10n-tools): the catalogue of texts is not built.")
  return()
endif()
set(catalogue ${CMAKE_BINARY_DIR}/vantor_en)
add_custom_target(translations
  COMMAND ${LUPDATE} -silent -no-obsolete -source-language en -target-language en
    -I KNShared -I Vantor -I VantorMSSQL KNShared Vantor VantorMSSQL -ts ${catalogue}.ts
  COMMAND ${LRELEASE} -silent ${catalogue}.ts -qm ${catalogue}.qm
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
