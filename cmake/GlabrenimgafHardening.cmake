# What makes mistakes in memory harder to misuse, for everything built here. Sanitizers find them themselves, and builds
# without optimisation have no checked standard functions.
if(NOT GLABRENIMGAF_SANITIZE)
    include(CheckPIESupported)
    check_pie_supported(LANGUAGES CXX)
    add_compile_options(-fstack-protector-strong)
    add_compile_options($<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
                        $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
    add_link_options(LINKER:-z,relro LINKER:-z,now)
endif()
