# Installs the built project into a folder of its own, uses it from there as a stranger would, and
# again after that folder was moved.
#
#   cmake -D BUILD_DIR=... -D WORK_DIR=... -D GENERATOR=... -D CXX=... -D CXX_FLAGS=... -D CAPTURE_MAKER=...
#         -P PackageTest.cmake

function(run)
  cmake_parse_arguments(arg "" "OUTPUT" "COMMAND" ${ARGN})
  execute_process(COMMAND ${arg_COMMAND} OUTPUT_VARIABLE output ERROR_VARIABLE errors
      RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${arg_COMMAND} ended with ${status}:\n${output}${errors}")
  endif()
  set(${arg_OUTPUT} "${output}" PARENT_SCOPE)
endfunction()

function(expect_streams what output)
  if(NOT output MATCHES "^1\\.0\\.0: [1-9][0-9]* GOOSE, [1-9][0-9]* SV\n$")
    message(FATAL_ERROR "${what} printed: ${output}")
  endif()
  message(STATUS "${what}: ${output}")
endfunction()

function(use_package prefix)
  run(COMMAND ${CMAKE_COMMAND} -E rm -rf ${WORK_DIR}/build)
  run(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${WORK_DIR}/build -G ${GENERATOR}
      -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${CXX_FLAGS} -DCMAKE_PREFIX_PATH=${prefix})
  run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build)
  run(COMMAND ${WORK_DIR}/build/consumer ${capture} OUTPUT output)
  expect_streams("find_package" "${output}")

  file(GLOB_RECURSE pc_file ${prefix}/*/TalIec61850Parser.pc)
  cmake_path(GET pc_file PARENT_PATH pc_dir)
  separate_arguments(cxx_flags UNIX_COMMAND "${CXX_FLAGS}")
  find_program(PKG_CONFIG NAMES pkg-config pkgconf REQUIRED)
  run(COMMAND ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pc_dir}
      ${PKG_CONFIG} --cflags --libs TalIec61850Parser OUTPUT flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  file(GLOB_RECURSE library ${prefix}/*/TalIec61850Parser.so)
  cmake_path(GET library PARENT_PATH library_dir)
  run(COMMAND ${CXX} -std=c++20 ${cxx_flags} ${CMAKE_CURRENT_LIST_DIR}/consumer/consumer.cpp
      ${flags} -Wl,-rpath,${library_dir} -o ${WORK_DIR}/plain-consumer)
  run(COMMAND ${WORK_DIR}/plain-consumer ${capture} OUTPUT output)
  expect_streams("pkg-config" "${output}")

  execute_process(COMMAND ${library} OUTPUT_VARIABLE output RESULT_VARIABLE status)
  if(NOT status EQUAL 1 OR NOT output MATCHES "^Usage: ")
    message(FATAL_ERROR "the installed shared object printed: ${output}")
  endif()
  run(COMMAND ${prefix}/bin/tal-iec61850 streams ${capture} OUTPUT output)
endfunction()

set(capture ${WORK_DIR}/station.pcap)
run(COMMAND ${CMAKE_COMMAND} -E rm -rf ${WORK_DIR})
run(COMMAND ${CMAKE_COMMAND} -E make_directory ${WORK_DIR})
run(COMMAND ${CAPTURE_MAKER} ${capture} 5000)
run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
use_package(${WORK_DIR}/prefix)
run(COMMAND ${CMAKE_COMMAND} -E rename ${WORK_DIR}/prefix ${WORK_DIR}/moved)
use_package(${WORK_DIR}/moved)
