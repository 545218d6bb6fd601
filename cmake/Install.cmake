# Components, for packages that are installed one without the other: `library`, `analysis` and `scl`
# are what programs run with, `development` and the like what they are built with,
# `documents` the licence, the pages and the examples; tools/ has one more, `tools`.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TalIec61850Parser)

# Writes and installs the file by which pkg-config finds a library. Its folders are given relative
# to the file itself, so that the installed tree can be moved.
#   LINK      how the linker is told the library
#   REQUIRES  the libraries of this project that its headers include
function(tal_install_pkgconfig name)
  cmake_parse_arguments(arg "" "VERSION;DESCRIPTION;LINK;REQUIRES;COMPONENT" "" ${ARGN})
  set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
      BASE_DIRECTORY ${pkgconfig_dir} OUTPUT_VARIABLE pkgconfig_to_prefix)
  cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR
      BASE_DIRECTORY ${pkgconfig_dir} OUTPUT_VARIABLE pkgconfig_to_include)
  foreach(variable VERSION DESCRIPTION LINK REQUIRES)
    string(TOLOWER ${variable} in_template)
    set(${in_template} ${arg_${variable}})
  endforeach()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Library.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${arg_COMPONENT})
endfunction()

# Installs a library, its headers, and the targets by which CMake finds it.
#   RUNNABLE  it is a program as well: executable, though Debian's CMake leaves that bit out
function(tal_install_library target)
  cmake_parse_arguments(arg "RUNNABLE" "RUNTIME;DEVELOPMENT" "" ${ARGN})
  set(permissions "")
  if(arg_RUNNABLE)
    set(permissions PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
        WORLD_READ WORLD_EXECUTE)
  endif()
  install(TARGETS ${target} EXPORT ${target}Targets
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ${permissions}
              COMPONENT ${arg_RUNTIME} NAMELINK_COMPONENT ${arg_DEVELOPMENT}
      FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${arg_DEVELOPMENT}
      FILE_SET generated_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
               COMPONENT ${arg_DEVELOPMENT})
  install(EXPORT ${target}Targets NAMESPACE TalIec61850Parser:: DESTINATION ${package_dir}
      FILE ${target}Targets.cmake COMPONENT ${arg_DEVELOPMENT})
endfunction()

tal_install_library(TalIec61850Parser RUNTIME library DEVELOPMENT development RUNNABLE)
tal_install_pkgconfig(TalIec61850Parser VERSION ${PROJECT_VERSION}
    DESCRIPTION ${PROJECT_DESCRIPTION} LINK -l:TalIec61850Parser.so COMPONENT development)

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TalIec61850ParserConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TalIec61850ParserConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TalIec61850ParserConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TalIec61850ParserConfig.cmake
              ${PROJECT_BINARY_DIR}/TalIec61850ParserConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

if(TAL_BUILD_ANALYSIS)
  tal_install_library(TalIec61850Analysis RUNTIME analysis DEVELOPMENT analysis_development)
  tal_install_pkgconfig(TalIec61850Analysis VERSION ${tal_analysis_version}
      DESCRIPTION "Reads IEC 61850 GOOSE and Sampled Values packets in captures as they were sent"
      LINK -lTalIec61850Analysis COMPONENT analysis_development)
endif()

# pugixml is in no header: a program that uses this library needs its shared object alone.
if(TAL_BUILD_SCL)
  tal_install_library(TalIec61850Scl RUNTIME scl DEVELOPMENT scl_development)
  tal_install_pkgconfig(TalIec61850Scl VERSION ${tal_scl_version}
      DESCRIPTION "Reads descriptions of IEC 61850 stations and compares captures with them"
      LINK -lTalIec61850Scl REQUIRES TalIec61850Analysis COMPONENT scl_development)
endif()

# The pages that a user reads, and the programs that they speak of, into a folder of documents.
function(tal_install_pages folder component)
  file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md
      ${PROJECT_SOURCE_DIR}/docs/*.scd)
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/SECURITY.md
      DESTINATION ${folder} COMPONENT ${component})
  install(FILES ${pages} DESTINATION ${folder}/docs COMPONENT ${component})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/images DESTINATION ${folder}/docs COMPONENT ${component})
endfunction()

function(tal_install_examples folder component)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${folder} COMPONENT ${component}
      FILES_MATCHING PATTERN *.cpp)
endfunction()

# Debian's packages have folders of their own for these.
if(NOT TAL_DEBIAN_PACKAGES)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/CHANGELOG.md
      DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documents)
  tal_install_pages(${CMAKE_INSTALL_DOCDIR} documents)
  tal_install_examples(${CMAKE_INSTALL_DOCDIR} documents)
endif()
