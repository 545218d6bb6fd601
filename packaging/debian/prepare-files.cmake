# Run by CPack on the files that it is about to pack: Debian's programs are stripped, and its manual
# pages compressed.
file(GLOB_RECURSE programs ${CPACK_TEMPORARY_DIRECTORY}/*/usr/bin/* ${CPACK_TEMPORARY_DIRECTORY}/*.so.*)
foreach(program IN LISTS programs)
  if(NOT IS_SYMLINK ${program})
    execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note
        ${program} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()

file(GLOB_RECURSE manuals ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/*)
foreach(manual IN LISTS manuals)
  if(NOT manual MATCHES "\\.gz$")
    execute_process(COMMAND gzip -9n ${manual} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
