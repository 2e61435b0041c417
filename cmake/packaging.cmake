# What `cmake --install` puts where.
include(GNUInstallDirs)
find_program(UDX_GZIP gzip REQUIRED)

# Writes a file with the version in it to the build folder and compresses it there.
function(udx_compressed_page from to folder)
  configure_file(${from} ${to} @ONLY)
  add_custom_command(OUTPUT ${to}.gz DEPENDS ${to} VERBATIM
    COMMAND ${UDX_GZIP} -9nc ${to} > ${to}.gz)
  add_custom_target(udx_${to} ALL DEPENDS ${to}.gz)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${to}.gz DESTINATION ${folder})
endfunction()

# A release is stripped as it is installed.
install(CODE [[
  if(CMAKE_INSTALL_CONFIG_NAME STREQUAL "Release")
    set(CMAKE_INSTALL_DO_STRIP ON)
  endif()]])
install(TARGETS udx RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
udx_compressed_page(docs/udx.1.in udx.1 ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES completions/udx.bash RENAME udx
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/_udx DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md)
install(FILES examples/index.dat DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples)
