# Flags every storey shares, as one interface target.
add_library(trelmix_flags INTERFACE)
target_compile_options(trelmix_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    # The same formula must give the same bits on every machine.
    -ffp-contract=off
    # g++ 12 reports false overlaps in std::string.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
    $<$<BOOL:${TRELMIX_WERROR}>:-Werror>)
if(TRELMIX_SANITIZE)
    target_compile_options(trelmix_flags INTERFACE
        -fsanitize=${TRELMIX_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(trelmix_flags INTERFACE -fsanitize=${TRELMIX_SANITIZE})
endif()
if(TRELMIX_FUZZ)
    target_compile_options(trelmix_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

find_program(TRELMIX_CCACHE ccache)
if(TRELMIX_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${TRELMIX_CCACHE})
endif()
