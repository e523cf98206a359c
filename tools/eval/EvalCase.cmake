# Runs PROGRAM's command "eval" on TEXT with ARGUMENTS (joined by "|") and compares the exit code and everything that it
# has printed:
# EXPECTED on standard output, or as error after WARNED on standard error.
string(REPLACE "|" ";" arguments "${ARGUMENTS}")
execute_process(COMMAND ${PROGRAM} eval ${TEXT} ${arguments}
                RESULT_VARIABLE code OUTPUT_VARIABLE printed ERROR_VARIABLE complained)
if(CODE EQUAL 0)
  set(output "${EXPECTED}|")
  set(errors "${WARNED}")
else()
  set(output "")
  set(errors "${WARNED}${EXPECTED}|")
endif()
string(REPLACE "\n" "|" printed "${printed}")
string(REPLACE "\n" "|" complained "${complained}")
if(NOT code STREQUAL CODE OR NOT printed STREQUAL output OR NOT complained STREQUAL errors)
  message(FATAL_ERROR "exit code ${code} (expected ${CODE}), output '${printed}' (expected '${output}'), "
                      "errors '${complained}' (expected '${errors}')")
endif()
