# Fails unless the installed programs run, find their connector and have the files that a desktop needs.
function(run expected)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
  if(NOT status EQUAL 0 OR NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${ARGN}\nended with ${status} and said:\n${output}${errors}")
  endif()
endfunction()

file(REMOVE_RECURSE ${PREFIX})
run("Installing" ${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX})
run("^vantor ${VERSION}" ${PREFIX}/bin/vantor --version)
run("FILE.sql" ${PREFIX}/bin/vantor --help)
set(pages vantor vantor-cli)
if(SAMPLE_SERVER)
  run("42" ${PREFIX}/bin/vantor-cli query --sample --format csv "SELECT 6 * 7 AS answer")
  list(APPEND pages vantor-sample-server)
endif()
list(TRANSFORM pages PREPEND share/man/man1/)
list(TRANSFORM pages APPEND .1.gz)

foreach(file
    share/applications/com.quorvex.vantor.desktop share/metainfo/com.quorvex.vantor.metainfo.xml
    share/icons/hicolor/scalable/apps/com.quorvex.vantor.svg share/bash-completion/completions/vantor-cli
    ${pages})
  if(NOT EXISTS ${PREFIX}/${file})
    message(FATAL_ERROR "${file} is not installed.")
  endif()
endforeach()
find_program(DESKTOP_FILE_VALIDATE desktop-file-validate)
if(DESKTOP_FILE_VALIDATE)
  execute_process(COMMAND ${DESKTOP_FILE_VALIDATE} ${PREFIX}/share/applications/com.quorvex.vantor.desktop
    RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "The desktop file is not valid.")
  endif()
endif()
