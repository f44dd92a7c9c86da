# quillmere_compiled_help(): the pages and pictures of assets/help as help.chm in the portable folder. Its
# table of contents is the row of links on top of the first page.
function(quillmere_compiled_help)
  find_program(CHMCMD chmcmd REQUIRED)
  set(pages ${CMAKE_SOURCE_DIR}/assets/help)
  set(copy ${CMAKE_CURRENT_BINARY_DIR}/help)  # chmcmd 3.2.2 reads beside its project alone
  file(GLOB_RECURSE files CONFIGURE_DEPENDS RELATIVE ${pages} ${pages}/*.html ${pages}/*.png)

  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${pages}/index.html)
  file(STRINGS ${pages}/index.html links REGEX "^<p><b>Start</b> \\|")
  string(REPLACE "<b>Start</b>" "<a href=\"index.html\">Start</a>" links "${links}")
  string(REGEX MATCHALL "<a href=\"[^<]*" links "${links}")
  list(TRANSFORM links REPLACE "<a href=\"([^\"]*)\">(.*)" "<li><object type=\"text/sitemap\">\
<param name=\"Name\" value=\"\\2\"><param name=\"Local\" value=\"\\1\"></object>")
  list(JOIN links "\n" links)
  file(CONFIGURE OUTPUT ${copy}/contents.hhc CONTENT "<html><body><ul>\n${links}\n</ul></body></html>\n")

  list(JOIN files "\n" lines)
  file(CONFIGURE OUTPUT ${copy}/help.hhp CONTENT "[OPTIONS]
Compatibility=1.1 or later
Compiled file=help.chm
Contents file=contents.hhc
Default topic=index.html
Full-text search=Yes
Language=0x409 English (United States)
Title=Quillmere

[FILES]
${lines}
")

  list(TRANSFORM files PREPEND ${pages}/)
  set(help ${QUILLMERE_APP_DIR}/help.chm)
  add_custom_command(
    OUTPUT ${help}
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${pages} ${copy}
    COMMAND ${CHMCMD} --no-html-scan --verbosity 0 help.hhp
    COMMAND ${CMAKE_COMMAND} -E copy ${copy}/help.chm ${help}
    DEPENDS ${files} ${copy}/help.hhp ${copy}/contents.hhc
    WORKING_DIRECTORY ${copy}
    VERBATIM)
  add_custom_target(quillmere_compiled_help DEPENDS ${help})
  install(FILES ${help} DESTINATION quillmere)
endfunction()
