# Run by cpack ahead of each package. The zsh of Debian reads completions of packages elsewhere.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(zsh ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share/zsh)
  file(RENAME ${zsh}/site-functions ${zsh}/vendor-completions)
endif()
