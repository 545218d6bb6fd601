# clang links its sanitizers' runtime into programs alone. A shared object that is executed, or opened
# by a program without sanitizers, takes the runtime that is a shared object itself (-shared-libasan),
# which lies where the loader does not look. The way there is one of the flags, so that those who
# compile with this build's flags, as the package's tests do, find it too.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_FLAGS MATCHES "-shared-libasan")
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-runtime-dir
      OUTPUT_VARIABLE tal_runtime_dir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  string(APPEND CMAKE_CXX_FLAGS " -Qunused-arguments -Wl,-rpath,${tal_runtime_dir}")
endif()
