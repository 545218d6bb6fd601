# Compares what the shared object exports with the list that is kept.
#
#   cmake -D LIBRARY=... -D LIST=... -D FOUND=... -D NM=... -D ADVICE=... -P PublicSymbols.cmake
#
# What was found is written to FOUND, below the kept list's comments, to be copied over it.

cmake_minimum_required(VERSION 3.25)
include(${CMAKE_CURRENT_LIST_DIR}/Steps.cmake)

# The lines of a text as a list: brackets and semicolons in them stay.
function(lines_of text out_lines)
  string(REPLACE ";" "<,>" text "${text}")
  string(REPLACE "[" "<:" text "${text}")
  string(REPLACE "]" ":>" text "${text}")
  string(REGEX REPLACE "\n+$" "" text "${text}")
  string(REPLACE "\n" ";" text "${text}")
  set(${out_lines} "${text}" PARENT_SCOPE)
endfunction()

function(text_of lines out_text)
  list(JOIN lines "\n" text)
  string(REPLACE "<,>" ";" text "${text}")
  string(REPLACE "<:" "[" text "${text}")
  string(REPLACE ":>" "]" text "${text}")
  set(${out_text} "${text}" PARENT_SCOPE)
endfunction()

run(COMMAND ${NM} -D -C --defined-only ${LIBRARY} OUTPUT output)
lines_of("${output}" found)
list(TRANSFORM found REPLACE "^[0-9a-fA-F]+ [A-Za-z] " "")
list(REMOVE_DUPLICATES found) # constructors come twice
list(SORT found)

file(READ ${LIST} kept)
lines_of("${kept}" kept)
set(comments ${kept})
list(FILTER comments INCLUDE REGEX "^#")
list(FILTER kept EXCLUDE REGEX "^#")

text_of("${comments};${found}" text)
file(WRITE ${FOUND} "${text}\n")

set(gone ${kept})
list(REMOVE_ITEM gone ${found})
set(new ${found})
list(REMOVE_ITEM new ${kept})
if(gone OR new OR NOT found STREQUAL kept)
  list(TRANSFORM gone PREPEND "  gone: ")
  list(TRANSFORM new PREPEND "  new:  ")
  text_of("${gone};${new}" changes)
  message(FATAL_ERROR "The library exports other symbols than ${LIST} lists:\n${changes}\n"
      "Where that is wanted:\n  cp ${FOUND} ${LIST}\n"
      "${ADVICE}")
endif()
list(LENGTH found count)
message(STATUS "${count} symbols, as listed")
