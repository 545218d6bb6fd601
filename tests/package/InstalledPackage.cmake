# Installs the built project into a folder of its own, uses it from there as strangers would, and
# again after that folder was moved.
#
#   cmake -D BUILD_DIR=... -D WORK_DIR=... -D VERSION=... -D ABI=...
#         -D ANALYSIS_VERSION=... -D SCL_VERSION=... -D GENERATOR=... -D MAKE_PROGRAM=... -D CXX=...
#         -D CXX_FLAGS=... -D CAPTURE_MAKER=... -P InstalledPackage.cmake

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)
separate_arguments(CXX_FLAGS_LIST UNIX_COMMAND "${CXX_FLAGS}")
find_program(PKG_CONFIG NAMES pkg-config pkgconf REQUIRED)

# The folder below a prefix that the shared object lies in.
function(find_library_dir prefix out_dir)
  file(GLOB_RECURSE library ${prefix}/*/TalIec61850Parser.so)
  cmake_path(GET library PARENT_PATH dir)
  set(${out_dir} ${dir} PARENT_SCOPE)
endfunction()

# Makes the command that configures a project, which is told what it wants of the package.
macro(configure_consumer prefix project what_it_wants)
  file(REMOVE_RECURSE ${WORK_DIR}/build)
  set(configure_command ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/${project}
      -B ${WORK_DIR}/build -G ${GENERATOR} -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}
      -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${CXX_FLAGS}
      -DCMAKE_PREFIX_PATH=${prefix} -D${what_it_wants})
endmacro()

function(use_by_cmake prefix)
  configure_consumer(${prefix} consumer wanted_version=1.0)
  run(COMMAND ${configure_command})
  run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
  run(COMMAND ${WORK_DIR}/build/consumer ${capture} OUTPUT output)
  expect_streams("find_package" ${VERSION} ${VERSION} "${output}")
  if(ANALYSIS_VERSION)
    configure_consumer(${prefix} analysis wanted_component=Analysis)
    run(COMMAND ${configure_command})
    run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
    run(COMMAND ${WORK_DIR}/build/analysis-consumer ${capture} OUTPUT output)
    expect_records("find_package, COMPONENTS Analysis" ${ANALYSIS_VERSION} "${output}")
  endif()
  if(SCL_VERSION)
    configure_consumer(${prefix} scl CMAKE_DISABLE_FIND_PACKAGE_pugixml=ON)
    run(COMMAND ${configure_command})
    run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
    run(COMMAND ${WORK_DIR}/build/scl-consumer ${description} OUTPUT output)
    expect_values("find_package, COMPONENTS Scl" ${SCL_VERSION} "${output}")
  endif()
endfunction()

function(want_another_component prefix)
  configure_consumer(${prefix} analysis wanted_component=Synthesis)
  expect_refusal("component Synthesis is not installed" ${configure_command})
  message(STATUS "find_package refuses a component that there is not")
endfunction()

function(want_another_version prefix)
  math(EXPR next_major "${VERSION_MAJOR} + 1")
  foreach(wanted ${next_major}.0 ${VERSION_MAJOR}.999)
    configure_consumer(${prefix} consumer wanted_version=${wanted})
    expect_refusal("compatible with requested version \"${wanted}\"" ${configure_command})
    message(STATUS "find_package refuses ${wanted}")
  endforeach()
endfunction()

# Compiles and runs the consumer with the flags that pkg-config gives; `headers` is the version that
# it must see in them.
function(use_by_pkg_config prefix headers)
  find_library_dir(${prefix} library_dir)
  set(pkg_config ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${library_dir}/pkgconfig ${PKG_CONFIG})
  run(COMMAND ${pkg_config} --modversion TalIec61850Parser OUTPUT output)
  if(NOT output STREQUAL "${VERSION}\n")
    message(FATAL_ERROR "pkg-config gives the version as ${output}")
  endif()
  run(COMMAND ${pkg_config} --cflags --libs TalIec61850Parser OUTPUT flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(COMMAND ${CXX} -std=c++20 ${CXX_FLAGS_LIST} ${CMAKE_CURRENT_LIST_DIR}/consumer/consumer.cpp
      ${flags} -Wl,-rpath,${library_dir} -o ${WORK_DIR}/plain-consumer)
  run(COMMAND ${WORK_DIR}/plain-consumer ${capture} OUTPUT output)
  expect_streams("pkg-config" ${headers} ${VERSION} "${output}")
endfunction()

function(use_scl_by_pkg_config prefix)
  find_library_dir(${prefix} library_dir)
  set(pkg_config ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${library_dir}/pkgconfig ${PKG_CONFIG})
  run(COMMAND ${pkg_config} --modversion TalIec61850Scl OUTPUT output)
  if(NOT output STREQUAL "${SCL_VERSION}\n")
    message(FATAL_ERROR "pkg-config gives the version of the third library as ${output}")
  endif()
  run(COMMAND ${pkg_config} --cflags --libs TalIec61850Scl OUTPUT flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(COMMAND ${CXX} -std=c++20 ${CXX_FLAGS_LIST} ${CMAKE_CURRENT_LIST_DIR}/scl/scl.cpp
      ${flags} -Wl,-rpath,${library_dir} -o ${WORK_DIR}/plain-scl)
  run(COMMAND ${WORK_DIR}/plain-scl ${description} OUTPUT output)
  expect_values("pkg-config, the third library" ${SCL_VERSION} "${output}")
endfunction()

function(use_analysis_by_pkg_config prefix)
  find_library_dir(${prefix} library_dir)
  set(pkg_config ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${library_dir}/pkgconfig ${PKG_CONFIG})
  run(COMMAND ${pkg_config} --modversion TalIec61850Analysis OUTPUT output)
  if(NOT output STREQUAL "${ANALYSIS_VERSION}\n")
    message(FATAL_ERROR "pkg-config gives the version of the second library as ${output}")
  endif()
  run(COMMAND ${pkg_config} --cflags --libs TalIec61850Analysis OUTPUT flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(COMMAND ${CXX} -std=c++20 ${CXX_FLAGS_LIST} ${CMAKE_CURRENT_LIST_DIR}/analysis/analysis.cpp
      ${flags} -Wl,-rpath,${library_dir} -o ${WORK_DIR}/plain-analysis)
  run(COMMAND ${WORK_DIR}/plain-analysis ${capture} OUTPUT output)
  expect_records("pkg-config, the second library" ${ANALYSIS_VERSION} "${output}")
endfunction()

# The licence, and the pages that a user reads.
function(read_documents prefix)
  foreach(file LICENSE README.md CHANGELOG.md SECURITY.md docs/guide.md docs/tool.md
      examples/index-and-decode.cpp)
    if(NOT EXISTS ${prefix}/share/doc/TalIec61850Parser/${file})
      message(FATAL_ERROR "${file} is not installed")
    endif()
  endforeach()
endfunction()

# A program that was compiled with newer headers is told the version of the library that it finds.
function(use_with_newer_headers prefix)
  file(COPY ${prefix}/ DESTINATION ${WORK_DIR}/newer)
  set(header ${WORK_DIR}/newer/include/TalIec61850Parser/Version.hpp)
  file(READ ${header} text)
  string(REPLACE "\"${VERSION}\"" "\"${VERSION}.newer\"" text "${text}")
  file(WRITE ${header} "${text}")
  use_by_pkg_config(${WORK_DIR}/newer ${VERSION}.newer)
endfunction()

function(open_at_run_time prefix)
  find_library_dir(${prefix} library_dir)
  run(COMMAND ${CXX} -std=c++20 ${CXX_FLAGS_LIST} ${CMAKE_CURRENT_LIST_DIR}/opener.cpp
      -ldl -o ${WORK_DIR}/opener)
  foreach(name TalIec61850Parser.so TalIec61850Parser.so.${ABI} TalIec61850Parser.so.${VERSION})
    run(COMMAND ${WORK_DIR}/opener ${library_dir}/${name} OUTPUT output)
    if(NOT output STREQUAL "${VERSION}\n")
      message(FATAL_ERROR "${name}, opened at run time, says that it is ${output}")
    endif()
  endforeach()
  message(STATUS "dlopen: ${VERSION}")
endfunction()

# The shared object and the companion are programs.
function(execute prefix)
  find_library_dir(${prefix} library_dir)
  execute_process(COMMAND ${library_dir}/TalIec61850Parser.so.${ABI} OUTPUT_VARIABLE output
      RESULT_VARIABLE status)
  if(NOT status EQUAL 1 OR NOT output MATCHES "^Usage: ")
    message(FATAL_ERROR "the installed shared object ended with ${status}, and printed: ${output}")
  endif()
  if(EXISTS ${prefix}/bin/tal-iec61850)
    run(COMMAND ${prefix}/bin/tal-iec61850 streams ${capture} OUTPUT output)
    foreach(file man/man1/tal-iec61850.1 bash-completion/completions/tal-iec61850
        zsh/site-functions/_tal-iec61850 fish/vendor_completions.d/tal-iec61850.fish)
      file(READ ${prefix}/share/${file} text)
      if(NOT text MATCHES "gocbref")
        message(FATAL_ERROR "${file} does not know the options of tal-iec61850")
      endif()
    endforeach()
    message(STATUS "executed: the shared object, tal-iec61850")
  else()
    message(STATUS "executed: the shared object")
  endif()
endfunction()

make_empty(${WORK_DIR})
set(capture ${WORK_DIR}/station.pcap)
set(description ${CMAKE_CURRENT_LIST_DIR}/scl/station.scd)
run(COMMAND ${CAPTURE_MAKER} ${capture} 5000)
string(REGEX MATCH "^[0-9]+" VERSION_MAJOR ${VERSION})

run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
use_by_cmake(${WORK_DIR}/prefix)
want_another_version(${WORK_DIR}/prefix)
want_another_component(${WORK_DIR}/prefix)
use_by_pkg_config(${WORK_DIR}/prefix ${VERSION})
read_documents(${WORK_DIR}/prefix)
use_with_newer_headers(${WORK_DIR}/prefix)
open_at_run_time(${WORK_DIR}/prefix)
execute(${WORK_DIR}/prefix)

file(RENAME ${WORK_DIR}/prefix ${WORK_DIR}/moved)
use_by_cmake(${WORK_DIR}/moved)
use_by_pkg_config(${WORK_DIR}/moved ${VERSION})
if(ANALYSIS_VERSION)
  use_analysis_by_pkg_config(${WORK_DIR}/moved)
endif()
if(SCL_VERSION)
  use_scl_by_pkg_config(${WORK_DIR}/moved)
endif()
execute(${WORK_DIR}/moved)
