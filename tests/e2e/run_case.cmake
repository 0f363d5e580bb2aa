# Runs morvane or morvane-wave (PROGRAM) in one case folder and compares standard output, exit
# status and, where the case pins it, standard error with the expected files.
file(READ ${CASE_DIR}/cmd cmd_text)
string(STRIP "${cmd_text}" cmd_text)
separate_arguments(cmd_args UNIX_COMMAND "${cmd_text}")

execute_process(COMMAND ${MORVANE} ${cmd_args}
    WORKING_DIRECTORY ${CASE_DIR}
    OUTPUT_VARIABLE actual_out
    ERROR_VARIABLE actual_err
    RESULT_VARIABLE actual_rc)

# getopt names the program by its path; the goldens by its name.
string(REPLACE "${MORVANE}" "${PROGRAM}" actual_err "${actual_err}")

set(failed FALSE)
if(actual_err MATCHES "runtime error:|Sanitizer")
    message("Sanitizer report on standard error:\n${actual_err}")
    set(failed TRUE)
endif()

file(READ ${CASE_DIR}/expected.out expected_out)
if(NOT actual_out STREQUAL expected_out)
    message("Standard output differs.\n--- expected\n${expected_out}\n--- actual\n${actual_out}")
    set(failed TRUE)
endif()

file(READ ${CASE_DIR}/expected.rc expected_rc)
string(STRIP "${expected_rc}" expected_rc)
if(NOT actual_rc STREQUAL expected_rc)
    message("Exit status differs: expected ${expected_rc}, actual ${actual_rc}")
    set(failed TRUE)
endif()

if(EXISTS ${CASE_DIR}/expected.err)
    file(READ ${CASE_DIR}/expected.err expected_err)
    if(NOT actual_err STREQUAL expected_err)
        message("Standard error differs.\n--- expected\n${expected_err}\n--- actual\n${actual_err}")
        set(failed TRUE)
    endif()
endif()

if(failed)
    message(FATAL_ERROR "e2e case ${CASE_DIR} failed")
endif()
