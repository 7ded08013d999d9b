get_target_property(VANTOR_MOC Qt6::moc LOCATION)
configure_file(${CMAKE_CURRENT_LIST_DIR}/moc.in ${CMAKE_BINARY_DIR}/moc @ONLY
  FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

# Makes the meta-objects of a target's classes.
function(vantor_make_meta_objects target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON AUTOMOC_EXECUTABLE ${CMAKE_BINARY_DIR}/moc)
endfunction()
