# Run by cpack ahead of each package.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(ENV{SOURCE_DATE_EPOCH} ${CPACK_UDX_RELEASED})
  # Without this tool cpack would leave out the dependencies and say nothing.
  execute_process(COMMAND dpkg-shlibdeps --version OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  # The zsh of Debian reads completions of packages elsewhere.
  set(zsh ${CPACK_TEMPORARY_INSTALL_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}/share/zsh)
  file(RENAME ${zsh}/site-functions ${zsh}/vendor-completions)
  # A package may not depend on the umask.
  file(CHMOD_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}
    DIRECTORY_PERMISSIONS ${CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
endif()
