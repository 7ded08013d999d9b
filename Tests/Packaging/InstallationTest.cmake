# Fails unless the installed programs run, find their connector and come with what a desktop wants.
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
run("42" ${PREFIX}/bin/vantor-cli query --sample --format csv "SELECT 6 * 7 AS answer")

foreach(file
    share/applications/com.quorvex.vantor.desktop share/metainfo/com.quorvex.vantor.metainfo.xml
    share/icons/hicolor/scalable/apps/com.quorvex.vantor.svg share/bash-completion/completions/vantor-cli
    share/man/man1/vantor.1.gz share/man/man1/vantor-cli.1.gz share/man/man1/vantor-sample-server.1.gz)
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
