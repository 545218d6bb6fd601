set(TAL_HARDENING "" CACHE STRING "Options that libraries and programs are compiled with, tests are not")

# The warnings of the project's own code, and what hardens it. Warnings become errors only where a
# preset says so, so that a user's newer compiler never fails the build over one.
function(tal_compile_options target)
  target_compile_features(${target} PRIVATE cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${target} PRIVATE
      -Wall -Wextra -Wpedantic -Wconversion -Wshadow
      # g++ 12 sees overlapping copies where a text is assigned to a string, and is mistaken (its
      # bug 105651).
      $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
      $<$<BOOL:${TAL_WARNINGS_AS_ERRORS}>:-Werror>)
  separate_arguments(hardening UNIX_COMMAND "${TAL_HARDENING}")
  target_compile_options(${target} PRIVATE ${hardening})
endfunction()

# Defines a path of this build, for those sources of a target that name it: all others are compiled
# the same in every folder, and so are found by the compiler's cache. Called after all sources are
# added; a source that comes to name it is seen when CMake runs again.
function(tal_define_path target name path)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources EXCLUDE REGEX "^\\$<")
  foreach(source IN LISTS sources)
    cmake_path(ABSOLUTE_PATH source)
    file(STRINGS ${source} uses REGEX ${name} LIMIT_COUNT 1)
    if(uses)
      set_property(SOURCE ${source} APPEND PROPERTY COMPILE_DEFINITIONS ${name}="${path}")
    endif()
  endforeach()
endfunction()
