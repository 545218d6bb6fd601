# What fuzzers are made of: the library is compiled for libFuzzer, which sees where inputs go in it,
# and for sanitizers that end the program at the first mistake. The tests' builders and oracles are
# not: they would only be slow. Comparisons are not traced: the dictionary and the mutators know what
# the library compares with.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "TAL_BUILD_FUZZERS takes clang: -DCMAKE_CXX_COMPILER=clang++")
endif()

set(tal_sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
add_link_options(${tal_sanitizers})

function(tal_sanitize target)
  target_compile_options(${target} PRIVATE ${tal_sanitizers} -fno-omit-frame-pointer)
endfunction()

function(tal_follow_inputs target)
  tal_sanitize(${target})
  target_compile_options(${target} PRIVATE
      -fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
  target_link_options(${target} PUBLIC -fsanitize=fuzzer-no-link)
endfunction()
