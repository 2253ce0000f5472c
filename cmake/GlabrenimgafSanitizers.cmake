# Sanitizers hold for the whole build: library, netlist database, program and tests share one heap.
if(GLABRENIMGAF_SANITIZE STREQUAL "address")
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
    # With sanitizers GCC 12 takes members of the standard library's <regex> for uninitialised.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
elseif(GLABRENIMGAF_SANITIZE STREQUAL "thread")
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
elseif(GLABRENIMGAF_SANITIZE)
    message(FATAL_ERROR "GLABRENIMGAF_SANITIZE must be address, thread or empty, not '${GLABRENIMGAF_SANITIZE}'")
endif()
