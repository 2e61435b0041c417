# What `cmake --install` puts where, and the packages that `cpack` makes of it.
include(GNUInstallDirs)
find_program(UDX_GZIP gzip REQUIRED)

# The day of the version, the time of all that is packed.
set(CPACK_UDX_RELEASED 1795219200)
set(ENV{SOURCE_DATE_EPOCH} ${CPACK_UDX_RELEASED})
string(TIMESTAMP UDX_RELEASED "%a, %d %b %Y %H:%M:%S +0000" UTC)

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
udx_compressed_page(case/udx-case.1.in udx-case.1 ${CMAKE_INSTALL_MANDIR}/man1)
udx_compressed_page(cmake/changelog.in changelog ${CMAKE_INSTALL_DOCDIR})
install(PROGRAMS case/udx-case DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY case/ DESTINATION ${CMAKE_INSTALL_DATADIR}/udx FILES_MATCHING
  PATTERN *.sh PATTERN *.sql PATTERN *.awk PATTERN *.css PATTERN *.gp)
foreach(command udx udx-case)
  install(FILES completions/${command}.bash RENAME ${command}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES completions/_${command} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
  install(FILES completions/${command}.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()
install(FILES README.md CONTRIBUTING.md cmake/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES bench/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/bench)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.md PATTERN *.svg
  PATTERN *.png)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

# .invalid is the domain of addresses that lead nowhere.
set(CPACK_PACKAGE_CONTACT "the udx developers <udx@udx.invalid>")
set(CPACK_PACKAGE_VENDOR "the udx developers")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "sqlite3, gnuplot-nox")  # for udx-case
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"udx reads the index.dat files in which Internet Explorer kept its cache,
history and cookie indexes, and writes one delimited row for each URL, LEAK and
REDR record, so that an examiner can see what a browser stored and when.
.
It takes single files, lists of paths, folders, raw images and VMware disks,
and finds records in damaged files and fragments too. udx-case makes a database
and a report of its rows.")
set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
if(UDX_STATIC)
  string(APPEND CPACK_SYSTEM_NAME -static)
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/archive.cmake)
# Named, or else cpack writes its own list of installed files over that of `cmake --install`.
set(CPACK_INSTALL_CMAKE_PROJECTS ${CMAKE_BINARY_DIR};udx;Unspecified;/)
include(CPack)
