# Has CPack make a Debian package of each component that Install.cmake and tools/ install, see
# scripts/package. What Debian wants besides the project's own files is in packaging/debian.
if(NOT TAL_INSTALL)
  message(FATAL_ERROR "TAL_DEBIAN_PACKAGES takes TAL_INSTALL")
endif()
set(debian_dir ${PROJECT_SOURCE_DIR}/packaging/debian)
set(tal_library_package libtaliec61850parser${tal_abi})
set(tal_analysis_package libtaliec61850analysis${tal_analysis_abi})
set(tal_scl_package libtaliec61850scl${tal_scl_abi})

# The packages' version is that of the newest entry of their changelog.
file(STRINGS ${debian_dir}/changelog debian_version LIMIT_COUNT 1)
if(NOT debian_version MATCHES "^[a-z0-9]+ \\((.+)-([0-9]+)\\)"
   OR NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "${debian_dir}/changelog begins with ${debian_version}, "
      "but this is version ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_2})
set(debian_version ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
set(same "(= ${debian_version})")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "TalIec61850Parser developers <developers@taliec61850parser.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${debian_dir}/prepare-files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${debian_dir}/finish-packages.cmake)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE taliec61850parser)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

function(tal_install_compressed source package name)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  set(compressed ${PROJECT_BINARY_DIR}/packaging/${package}/${name}.gz)
  cmake_path(GET compressed PARENT_PATH dir)
  file(MAKE_DIRECTORY ${dir})
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} ${ARGN})
endfunction()

# Makes a package of one component, and gives it its papers.
function(tal_debian_package component package)
  cmake_parse_arguments(arg "" "SECTION;DEPENDS" "CONTROL_EXTRA" ${ARGN})
  set(description_file ${debian_dir}/${component}.description)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${description_file})
  file(READ ${description_file} description)

  string(TOUPPER ${component} prefix)
  string(PREPEND prefix CPACK_DEBIAN_)
  set(${prefix}_PACKAGE_NAME ${package} PARENT_SCOPE)
  set(${prefix}_PACKAGE_SECTION ${arg_SECTION} PARENT_SCOPE)
  set(${prefix}_PACKAGE_DEPENDS ${arg_DEPENDS} PARENT_SCOPE)
  set(${prefix}_PACKAGE_CONTROL_EXTRA ${arg_CONTROL_EXTRA} PARENT_SCOPE)
  set(${prefix}_DESCRIPTION "${description}" PARENT_SCOPE)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

  tal_install_compressed(${debian_dir}/changelog ${package} changelog.Debian COMPONENT ${component})
  tal_install_compressed(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${package} changelog
      COMPONENT ${component})
  install(FILES ${debian_dir}/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package}
      COMPONENT ${component})
  install(FILES ${debian_dir}/${component}.lintian-overrides
      DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME ${package}
      COMPONENT ${component})
endfunction()

# What the packages of other programs that link a library come to depend on: one file for each
# library, as Debian names it. A program that uses the second or third library is built anew for each
# version of it, while its ABI number is 0.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packaging/library/shlibs CONTENT
    "TalIec61850Parser ${tal_abi} ${tal_library_package} (>= ${PROJECT_VERSION})\n")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packaging/analysis/shlibs CONTENT
    "libTalIec61850Analysis ${tal_analysis_abi} ${tal_analysis_package} (= ${debian_version})\n")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/packaging/scl/shlibs CONTENT
    "libTalIec61850Scl ${tal_scl_abi} ${tal_scl_package} (= ${debian_version})\n")

tal_debian_package(library ${tal_library_package} SECTION libs
    CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packaging/library/shlibs ${debian_dir}/triggers)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)

tal_debian_package(development libtaliec61850parser-dev SECTION libdevel
    DEPENDS "${tal_library_package} ${same}")
tal_install_pages(${CMAKE_INSTALL_DATADIR}/doc/libtaliec61850parser-dev development)
tal_install_examples(${CMAKE_INSTALL_DATADIR}/doc/libtaliec61850parser-dev development)

if(TAL_BUILD_ANALYSIS)
  tal_debian_package(analysis ${tal_analysis_package} SECTION libs
      CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packaging/analysis/shlibs ${debian_dir}/triggers)
  set(CPACK_DEBIAN_ANALYSIS_PACKAGE_SHLIBDEPS ON)
  # CMake finds it as a component of the first library's package, where the pages are too.
  tal_debian_package(analysis_development libtaliec61850analysis-dev SECTION libdevel
      DEPENDS "${tal_analysis_package} ${same}, libtaliec61850parser-dev ${same}")
endif()

if(TAL_BUILD_SCL)
  tal_debian_package(scl ${tal_scl_package} SECTION libs
      DEPENDS "${tal_analysis_package} ${same}"
      CONTROL_EXTRA ${PROJECT_BINARY_DIR}/packaging/scl/shlibs ${debian_dir}/triggers)
  set(CPACK_DEBIAN_SCL_PACKAGE_SHLIBDEPS ON)
  tal_debian_package(scl_development libtaliec61850scl-dev SECTION libdevel
      DEPENDS "${tal_scl_package} ${same}, libtaliec61850analysis-dev ${same}")
endif()

if(TAL_BUILD_TOOLS)
  tal_debian_package(tools tal-iec61850 SECTION net DEPENDS
      "${tal_library_package} ${same}, ${tal_analysis_package} ${same}, ${tal_scl_package} ${same}")
  tal_install_pages(${CMAKE_INSTALL_DATADIR}/doc/tal-iec61850 tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
endif()
# The libraries' packages are not installed where they are made.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})

include(CPack)
