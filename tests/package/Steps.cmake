# What the package's tests are made of.

# Runs a command, which must succeed. OUTPUT names the variable for what it printed.
function(run)
  cmake_parse_arguments(arg "" "OUTPUT" "COMMAND" ${ARGN})
  execute_process(COMMAND ${arg_COMMAND} OUTPUT_VARIABLE output ERROR_VARIABLE errors
      RESULT_VARIABLE status)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${arg_COMMAND} ended with ${status}:\n${output}${errors}")
  endif()
  set(${arg_OUTPUT} "${output}" PARENT_SCOPE)
endfunction()

# Runs a command, which must fail and say so in words that match a pattern.
function(expect_refusal pattern)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE output
      RESULT_VARIABLE status)
  if(status EQUAL 0 OR NOT output MATCHES "${pattern}")
    message(FATAL_ERROR "${ARGN} ended with ${status}, and not with ${pattern}:\n${output}")
  endif()
endfunction()

# Holds a stranger's program to what it must print about the capture of a station.
function(expect_streams what headers library output)
  string(REPLACE "." "\\." expected "headers ${headers}, library ${library}")
  if(NOT output MATCHES "^${expected}: [1-9][0-9]* GOOSE, [1-9][0-9]* SV\n$")
    message(FATAL_ERROR "${what} printed: ${output}")
  endif()
  message(STATUS "${what}: ${output}")
endfunction()

# The same for the program that takes the second library.
function(expect_records what version output)
  string(REPLACE "." "\\." expected "headers ${version}, library ${version}")
  if(NOT output MATCHES "^${expected}: 5000 records, [1-9][0-9]* octets\n$")
    message(FATAL_ERROR "${what} printed: ${output}")
  endif()
  message(STATUS "${what}: ${output}")
endfunction()

# Looks at what scl-consumer printed of station.scd.
function(expect_values what version output)
  string(REPLACE "." "\\." expected "headers ${version}, library ${version}")
  if(NOT output MATCHES "^${expected}: 1 control blocks, 2 values\n$")
    message(FATAL_ERROR "${what} printed: ${output}")
  endif()
  message(STATUS "${what}: ${output}")
endfunction()

# Makes a folder anew, empty.
function(make_empty folder)
  file(REMOVE_RECURSE ${folder})
  file(MAKE_DIRECTORY ${folder})
endfunction()
