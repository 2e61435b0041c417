# Run by cpack behind each package. An archive is packed anew with the sums of its files, since
# cpack's own order, owners and modes depend on the file system and on the user.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
  file(GLOB_RECURSE files RELATIVE ${root} ${root}/*)
  foreach(file IN LISTS files)
    file(SHA256 ${root}/${file} sum)
    string(APPEND sums "${sum}  ${file}\n")
  endforeach()
  file(WRITE ${root}/SHA256SUMS "${sums}")
  execute_process(COMMAND_ERROR_IS_FATAL ANY WORKING_DIRECTORY ${root}/..
    COMMAND tar --sort=name --owner=root:0 --group=root:0 --mode=a+rX,go-w
      --mtime=@${CPACK_UDX_RELEASED} --use-compress-program=gzip\ -9n
      -cf ${CPACK_PACKAGE_FILES} ${CPACK_PACKAGE_FILE_NAME})
endif()
