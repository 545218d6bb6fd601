# Three components, for packages that are installed one without the other: `library` is what a program
# runs with, `development` what one is built with; tools/ has the third, `tools`.
include(CMakePackageConfigHelpers)

install(TARGETS TalIec61850Parser EXPORT TalIec61850ParserTargets
    # Executable: it is a program as well, and Debian's CMake would leave that bit out.
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                        WORLD_READ WORLD_EXECUTE
            COMPONENT library NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILE_SET generated_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TalIec61850Parser)
install(EXPORT TalIec61850ParserTargets NAMESPACE TalIec61850Parser:: DESTINATION ${package_dir}
    FILE TalIec61850ParserTargets.cmake COMPONENT development)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/TalIec61850ParserConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TalIec61850ParserConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TalIec61850ParserConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TalIec61850ParserConfig.cmake
              ${PROJECT_BINARY_DIR}/TalIec61850ParserConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# Its folders are given relative to the file itself, so that the installed tree can be moved.
set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
    BASE_DIRECTORY ${pkgconfig_dir} OUTPUT_VARIABLE pkgconfig_to_prefix)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_INCLUDEDIR
    BASE_DIRECTORY ${pkgconfig_dir} OUTPUT_VARIABLE pkgconfig_to_include)
configure_file(${CMAKE_CURRENT_LIST_DIR}/TalIec61850Parser.pc.in
    ${PROJECT_BINARY_DIR}/TalIec61850Parser.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TalIec61850Parser.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
