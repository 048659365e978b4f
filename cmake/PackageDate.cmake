# Read by cpack: the same commit gives the same packages to the byte, whoever makes them and when.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND git -C ${CPACK_TRELMIX_SOURCE} log -1 --format=%ct
        OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE code)
    if(code EQUAL 0)
        set(ENV{SOURCE_DATE_EPOCH} ${seconds})
    endif()
endif()
