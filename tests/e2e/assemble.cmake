# Assembles SOURCE with xa into OUTPUT and compares it with the committed IMAGE.
find_program(XA xa)
if(NOT XA)
    message("Notice: xa (Debian package xa65) is not installed; the re-assembly is skipped.")
    return()
endif()
get_filename_component(source_dir ${SOURCE} DIRECTORY)
execute_process(COMMAND ${XA} -o ${OUTPUT} ${SOURCE}
    WORKING_DIRECTORY ${source_dir}
    RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
    message(FATAL_ERROR "xa failed on ${SOURCE}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${IMAGE} RESULT_VARIABLE differ)
if(NOT differ EQUAL 0)
    message(FATAL_ERROR "${IMAGE} is not what ${SOURCE} assembles to; assemble it again")
endif()
