# Runs morvane or morvane-wave (PROGRAM) in one case folder and compares standard output, exit
# status and, where the case pins it, standard error with the expected files.
# A cmd file of several lines is several runs: their outputs are joined in order, and expected.rc
# holds one status a run.
file(STRINGS ${CASE_DIR}/cmd cmd_lines)
list(FILTER cmd_lines EXCLUDE REGEX "^[ \t]*$")
if(NOT cmd_lines)
    set(cmd_lines " ")  # a run without arguments
endif()
set(actual_out "")
set(actual_err "")
set(actual_rc "")
foreach(cmd_text IN LISTS cmd_lines)
    string(STRIP "${cmd_text}" cmd_text)
    separate_arguments(cmd_args UNIX_COMMAND "${cmd_text}")
    execute_process(COMMAND ${MORVANE} ${cmd_args}
        WORKING_DIRECTORY ${CASE_DIR}
        OUTPUT_VARIABLE run_out
        ERROR_VARIABLE run_err
        RESULT_VARIABLE run_rc)
    string(APPEND actual_out "${run_out}")
    string(APPEND actual_err "${run_err}")
    list(APPEND actual_rc "${run_rc}")
endforeach()
string(REPLACE ";" " " actual_rc "${actual_rc}")

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
string(REGEX REPLACE "[ \t\r\n]+" " " expected_rc "${expected_rc}")
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
