# All code is compiled for libFuzzer, which sees where it goes, and for sanitizers that end the program
# at the first mistake.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "TAL_BUILD_FUZZERS takes clang: -DCMAKE_CXX_COMPILER=clang++")
endif()
set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
add_compile_options(${sanitizers} -fsanitize=fuzzer-no-link -fno-omit-frame-pointer)
add_link_options(${sanitizers})
