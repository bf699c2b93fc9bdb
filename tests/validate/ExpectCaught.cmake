# Runs kxhost validate on one module of a broken bundle: it must end non-zero (an exit code or a signal)
# and print every regex of EXPECT.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND ${KXHOST} --bundle ${BUNDLE} --descriptions ${DESCRIPTIONS} validate --module ${MODULE}
                OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE rc)
message("${out}${err}")
if(rc EQUAL 0)
  message(FATAL_ERROR "kxhost validate passed ${MODULE}, which is broken")
endif()
foreach(expected IN LISTS EXPECT)
  if(NOT "${out}${err}" MATCHES "${expected}")
    message(FATAL_ERROR "missing the expected report: ${expected}")
  endif()
endforeach()
