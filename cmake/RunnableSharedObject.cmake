# Makes a shared object that can also be executed.
#
# The kernel runs a shared object that names an interpreter (the dynamic loader) and has an entry
# point. The loader's path is read from an executable that this very toolchain links, so that no
# architecture is spelled out; the entry point is the compiler's own start file for position
# independent executables. `main` and the start file's names must not be exported: who links the
# library keeps its own. See ExportedSymbols.cmake.

function(tal_find_interpreter out_path)
  if(NOT TAL_INTERPRETER)
    set(probe_dir ${CMAKE_CURRENT_BINARY_DIR}/interpreter-probe)
    file(WRITE ${probe_dir}/probe.cpp "int main() {}\n")
    try_compile(TAL_COMPILER_LINKS ${probe_dir} SOURCES ${probe_dir}/probe.cpp
        COPY_FILE ${probe_dir}/probe)
    if(NOT TAL_COMPILER_LINKS)
      message(FATAL_ERROR "${CMAKE_CXX_COMPILER} cannot link a program")
    endif()
    execute_process(
        COMMAND ${CMAKE_OBJCOPY} -O binary --only-section=.interp
                ${probe_dir}/probe ${probe_dir}/interp
        COMMAND_ERROR_IS_FATAL ANY)
    file(STRINGS ${probe_dir}/interp interpreter LIMIT_COUNT 1)
    if(NOT interpreter)
      message(FATAL_ERROR "a program that ${CMAKE_CXX_COMPILER} links needs no dynamic loader: "
          "CMAKE_EXE_LINKER_FLAGS must not be static")
    endif()
    set(TAL_INTERPRETER ${interpreter} CACHE INTERNAL "The dynamic loader of this toolchain")
  endif()
  set(${out_path} ${TAL_INTERPRETER} PARENT_SCOPE)
endfunction()

function(tal_make_runnable target)
  tal_find_interpreter(interpreter)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=Scrt1.o
      OUTPUT_VARIABLE start_file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(source ${CMAKE_CURRENT_BINARY_DIR}/${target}-interpreter.cpp)
  file(CONFIGURE OUTPUT ${source} CONTENT [[
// The dynamic loader that runs this shared object when it is executed.
extern const char talInterpreter[];
__attribute__((section(".interp"), used)) const char talInterpreter[] = "@interpreter@";
]] @ONLY)
  target_sources(${target} PRIVATE ${source})
  target_link_options(${target} PRIVATE ${start_file} LINKER:-e,_start)
endfunction()
