# Builds the library as a part of a stranger's project, in a folder of its own, and uses it there.
#
#   cmake -D SOURCE_DIR=... -D WORK_DIR=... -D VERSION=... -D ANALYSIS_VERSION=...
#         -D SCL_VERSION=... -D GENERATOR=... -D MAKE_PROGRAM=... -D FETCH=ON|OFF
#         -D ANALYSIS=ON|OFF -D SCL=ON|OFF -D UNITY=ON|OFF
#         -D STANDARD=... -D CXX=... -D LAUNCHER=... -D CAPTURE_MAKER=... -P PartOfAnotherBuild.cmake

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)

make_empty(${WORK_DIR})
set(capture ${WORK_DIR}/station.pcap)
run(COMMAND ${CAPTURE_MAKER} ${capture} 5000)

run(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/parent -B ${WORK_DIR}/build
    -G ${GENERATOR} -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}
    -Dsource_dir=${SOURCE_DIR} -Dfetch=${FETCH} -DTAL_BUILD_ANALYSIS=${ANALYSIS} -DTAL_BUILD_SCL=${SCL}
    -DCMAKE_CXX_STANDARD=${STANDARD} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_CXX_FLAGS=-O0
    -DCMAKE_UNITY_BUILD=${UNITY} -DCMAKE_UNITY_BUILD_BATCH_SIZE=0)
run(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/build --parallel 2)
run(COMMAND ${WORK_DIR}/build/consumer ${capture} OUTPUT output)
expect_streams("C++${STANDARD}" ${VERSION} ${VERSION} "${output}")
if(ANALYSIS)
  run(COMMAND ${WORK_DIR}/build/analysis-consumer ${capture} OUTPUT output)
  expect_records("the second library, C++${STANDARD}" ${ANALYSIS_VERSION} "${output}")
endif()
if(SCL)
  run(COMMAND ${WORK_DIR}/build/scl-consumer ${CMAKE_CURRENT_LIST_DIR}/scl/station.scd
      OUTPUT output)
  expect_values("the third library, C++${STANDARD}" ${SCL_VERSION} "${output}")
endif()

# The parent installs its own program, and nothing of the library.
run(COMMAND ${CMAKE_COMMAND} --install ${WORK_DIR}/build --prefix ${WORK_DIR}/prefix)
file(GLOB_RECURSE installed RELATIVE ${WORK_DIR}/prefix ${WORK_DIR}/prefix/*)
if(NOT installed STREQUAL "bin/consumer")
  message(FATAL_ERROR "the parent installs ${installed}")
endif()
