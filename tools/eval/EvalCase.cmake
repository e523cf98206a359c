# Runs PROGRAM on TEXT and compares the exit code and everything that it has printed.
execute_process(COMMAND ${PROGRAM} ${TEXT} RESULT_VARIABLE code OUTPUT_VARIABLE printed ERROR_VARIABLE complained)
string(REPLACE "\n" "|" output "${printed}${complained}")
if(NOT code STREQUAL CODE OR NOT output STREQUAL "${EXPECTED}|")
  message(FATAL_ERROR "exit code ${code} (expected ${CODE}), output '${output}' (expected '${EXPECTED}|')")
endif()
