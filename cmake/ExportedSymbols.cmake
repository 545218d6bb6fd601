# What the shared object exports: what TALIEC61850PARSER_EXPORT marks, and of that only names of the
# library's own namespaces. Code of standard templates that happens to be compiled into it stays
# inside: which that is changes with the compiler and its options. TalIec61850Parser/PublicSymbols.txt
# lists the names, and a test compares.

# Writes the header that defines TALIEC61850PARSER_EXPORT. CMake's module would try what the compiler
# can do, and keep that in a cache that may be another project's: g++ and clang++ can do all of it.
function(tal_generate_export_header target header)
  include(GenerateExportHeader)
  foreach(feature HIDDEN_VISIBILITY HIDDEN_INLINE_VISIBILITY DEPRECATED_ATTR)
    set(COMPILER_HAS_${feature} ON)
  endforeach()
  generate_export_header(${target} BASE_NAME TalIec61850Parser EXPORT_FILE_NAME ${header})
  unset(COMPILER_HAS_DEPRECATED CACHE)
endfunction()

function(tal_export_own_symbols target)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}-exported-symbols.map)
  file(CONFIGURE OUTPUT ${script} CONTENT [[
{
  global:
    _ZN11TalIec61850*; _ZNK11TalIec61850*; _ZN17TalIec61850Parser*; _ZNK17TalIec61850Parser*;
    _ZN5cross*; _ZNK5cross*;
    # A polymorphic class: its virtual tables and its run-time type.
    _ZTVN17TalIec61850Parser*; _ZTTN17TalIec61850Parser*;
    _ZTIN17TalIec61850Parser*; _ZTSN17TalIec61850Parser*;
  local: *;
};
]] @ONLY)
  target_link_options(${target} PRIVATE LINKER:--version-script=${script})
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()
