# Builds the catalogue of texts and fails at lupdate's warnings: a text of a class without Q_OBJECT has a wrong context, and
# no translation reaches it.
execute_process(COMMAND ${LUPDATE} -silent -no-obsolete -source-language en -target-language en
    -I KNShared -I Vantor -I VantorMSSQL KNShared Vantor VantorMSSQL -ts ${CATALOGUE}
  WORKING_DIRECTORY ${SOURCE} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT "${output}${errors}" STREQUAL "")
  message(FATAL_ERROR "lupdate: ${output}${errors}")
endif()
file(STRINGS ${CATALOGUE} texts REGEX "<source>" ENCODING UTF-8)
list(LENGTH texts count)
if(count LESS 350)
  message(FATAL_ERROR "The catalogue holds ${count} texts only.")
endif()
foreach(text "Use corrected statements" "New Connection…")
  if(NOT "${texts}" MATCHES "<source>&?[^<]*${text}")
    message(FATAL_ERROR "The catalogue misses \"${text}\".")
  endif()
endforeach()
