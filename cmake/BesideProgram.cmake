# quillmere_beside(PATTERN...): the files of assets/ that a machine's program needs beside it. They are
# copied into the portable folder and installed with it; the program depends on the target of the
# same name. All of them are kept in the tree, so that a build needs none of the scripts that made
# them.
function(quillmere_beside)
  set(assets ${CMAKE_SOURCE_DIR}/assets)
  list(TRANSFORM ARGN PREPEND ${assets}/)
  file(GLOB files CONFIGURE_DEPENDS RELATIVE ${assets} ${ARGN})
  set(copies)
  foreach(file IN LISTS files)
    add_custom_command(
      OUTPUT ${QUILLMERE_APP_DIR}/${file}
      COMMAND ${CMAKE_COMMAND} -E copy ${assets}/${file} ${QUILLMERE_APP_DIR}/${file}
      DEPENDS ${assets}/${file}
      VERBATIM)
    list(APPEND copies ${QUILLMERE_APP_DIR}/${file})
    get_filename_component(folder ${file} DIRECTORY)
    install(FILES ${assets}/${file} DESTINATION quillmere/${folder})
  endforeach()
  add_custom_target(quillmere_beside DEPENDS ${copies})
endfunction()
