# Run by CPack on the packages that it has made, for what it cannot be told: a field that it does not
# know, the size without what symbolic links point to, and scripts that it writes where the trigger of
# `triggers` does the same.

# The size of a tree's files in KiB, as Debian's tools compute it.
function(installed_size tree out_size)
  file(GLOB_RECURSE paths LIST_DIRECTORIES ON RELATIVE ${tree} ${tree}/*)
  list(FILTER paths EXCLUDE REGEX "^DEBIAN")
  list(LENGTH paths sum)
  foreach(path IN LISTS paths)
    if(NOT IS_SYMLINK ${tree}/${path} AND NOT IS_DIRECTORY ${tree}/${path})
      file(SIZE ${tree}/${path} size)
      math(EXPR sum "${sum} + (${size} + 1023) / 1024 - 1")
    endif()
  endforeach()
  set(${out_size} ${sum} PARENT_SCOPE)
endfunction()

foreach(package IN LISTS CPACK_PACKAGE_FILES)
  set(tree ${CPACK_TEMPORARY_DIRECTORY}/finished)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
  # Libraries of several architectures stand side by side; a program serves all of them.
  if(package MATCHES "/lib[^/]*$")
    set(multi_arch same)
  else()
    set(multi_arch foreign)
  endif()
  file(READ ${tree}/DEBIAN/control fields)
  string(STRIP "${fields}" fields)
  installed_size(${tree} size)
  string(REGEX REPLACE "\nInstalled-Size: [0-9]+" "\nInstalled-Size: ${size}" fields "${fields}")
  file(WRITE ${tree}/DEBIAN/control "${fields}\nMulti-Arch: ${multi_arch}\n")
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${tree} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
