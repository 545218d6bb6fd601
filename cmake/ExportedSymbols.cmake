# What a shared object exports: what its export macro marks, and of that only names of the library's
# own namespaces. Code of standard templates that is compiled into it stays inside: which that is
# changes with the compiler and its options. Each library's PublicSymbols.txt lists the names, and a
# test compares.

# Writes the header that defines a library's export macro, TALIEC61850PARSER_EXPORT for the target
# of that name. CMake's module would try what the compiler can do, and keep that in a cache that may
# be another project's: g++ and clang++ can do all of it.
function(tal_generate_export_header target header)
  include(GenerateExportHeader)
  foreach(feature HIDDEN_VISIBILITY HIDDEN_INLINE_VISIBILITY DEPRECATED_ATTR)
    set(COMPILER_HAS_${feature} ON)
  endforeach()
  generate_export_header(${target} BASE_NAME ${target} EXPORT_FILE_NAME ${header})
  unset(COMPILER_HAS_DEPRECATED CACHE)
endfunction()

# NAMESPACES: whose marked functions and variables are exported, and with them what belongs to a
# polymorphic class: its virtual tables and its run-time type.
function(tal_export_own_symbols target)
  cmake_parse_arguments(arg "" "" "NAMESPACES" ${ARGN})
  set(patterns "")
  foreach(name IN LISTS arg_NAMESPACES)
    string(LENGTH ${name} length)
    foreach(kind N NK TVN TTN TIN TSN)
      string(APPEND patterns " _Z${kind}${length}${name}*;")
    endforeach()
  endforeach()
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}-exported-symbols.map)
  file(CONFIGURE OUTPUT ${script} CONTENT "{\n  global:@patterns@\n  local: *;\n};\n" @ONLY)
  target_link_options(${target} PRIVATE LINKER:--version-script=${script})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
