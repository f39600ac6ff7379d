# zm_output_test(NAME FILE COMMAND [ARG...]): a test that COMMAND, run at the top of the tree, ends
# with status 0 and prints what FILE holds.
if(NOT CMAKE_SCRIPT_MODE_FILE)
  function(zm_output_test name file command)
    if(TARGET ${command})
      set(command "$<TARGET_FILE:${command}>")
    endif()
    add_test(NAME ${name}
      COMMAND "${CMAKE_COMMAND}" -D "FILE=${file}" -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
              -- "${command}" ${ARGN}
      WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}")
  endfunction()
  return()
endif()

# As a script: what stands after "--" is the command.
set(command)
set(at 0)
while(at LESS CMAKE_ARGC)
  if(DEFINED after)
    list(APPEND command "${CMAKE_ARGV${at}}")
  elseif(CMAKE_ARGV${at} STREQUAL "--")
    set(after TRUE)
  endif()
  math(EXPR at "${at} + 1")
endwhile()

execute_process(COMMAND ${command} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
file(READ "${FILE}" wanted)
if(NOT status EQUAL 0 OR NOT printed STREQUAL wanted)
  message(FATAL_ERROR "status ${status}, wanted:\n${wanted}\nprinted:\n${printed}")
endif()
