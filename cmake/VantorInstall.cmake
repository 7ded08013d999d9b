# The files that cmake --install copies, and the Debian package that CPack builds from them.
set(libraries ${CMAKE_INSTALL_LIBDIR}/vantor)

set_target_properties(vantor vantor-cli PROPERTIES INSTALL_RPATH "$ORIGIN/../${libraries}")
set_target_properties(KNShared KNSharedUI PROPERTIES INSTALL_RPATH "$ORIGIN")
set_target_properties(VantorMSSQL PROPERTIES INSTALL_RPATH "$ORIGIN/..")
set(programs vantor vantor-cli)
if(VANTOR_BUILDS_SAMPLE_SERVER)
  list(APPEND programs vantor-sample-server)
endif()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS KNShared KNSharedUI LIBRARY DESTINATION ${libraries})
install(TARGETS VantorMSSQL LIBRARY DESTINATION ${VANTOR_CONNECTORS})

set(packaging ${PROJECT_SOURCE_DIR}/Packaging)
install(FILES ${packaging}/com.quorvex.vantor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/com.quorvex.vantor.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${packaging}/com.quorvex.vantor.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${packaging}/completion/vantor-cli DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)

# Debian requires compressed manuals and change logs.
find_program(GZIP gzip REQUIRED)
function(vantor_install_compressed source name destination)
  set(VERSION ${PROJECT_VERSION})
  configure_file(${source} ${CMAKE_BINARY_DIR}/packaging/${name} @ONLY)
  add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/packaging/${name}.gz
    COMMAND ${GZIP} -9 -n -k -f ${CMAKE_BINARY_DIR}/packaging/${name}
    DEPENDS ${CMAKE_BINARY_DIR}/packaging/${name} VERBATIM)
  set_property(GLOBAL APPEND PROPERTY VANTOR_COMPRESSED ${CMAKE_BINARY_DIR}/packaging/${name}.gz)
  install(FILES ${CMAKE_BINARY_DIR}/packaging/${name}.gz DESTINATION ${destination})
endfunction()
foreach(page IN LISTS programs)
  vantor_install_compressed(${packaging}/man/${page}.1 ${page}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
vantor_install_compressed(${packaging}/changelog changelog ${CMAKE_INSTALL_DATADIR}/doc/vantor)
install(FILES ${packaging}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vantor)
get_property(compressed GLOBAL PROPERTY VANTOR_COMPRESSED)
add_custom_target(packaging-files ALL DEPENDS ${compressed})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantor)
set(CPACK_PACKAGE_VENDOR "The Vantor developers")
set(CPACK_PACKAGE_CONTACT "The Vantor developers <vantor@quorvex.com>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "client for Microsoft SQL Server")
set(CPACK_PACKAGE_DESCRIPTION
  "Browses and queries Microsoft SQL Server and Azure SQL Database: a desktop
program with an object explorer, an editor for T-SQL and results of any
size, a terminal program, and a sample server to try them on.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION database)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/bin)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "openssh-client, gnome-keyring | kwalletmanager | keepassxc")
include(CPack)
