# Provides the target `verific`: the embedded netlist database, or the commercial one below VERIFIC_ROOT.
# Nothing else in the build knows which of the two it is.
if(NOT VERIFIC_ROOT)
    add_subdirectory(platform/verific)
else()
    find_package(ZLIB REQUIRED)
    set(verific_archives "")
    set(verific_includes "")
    foreach(module IN ITEMS database containers util)
        set(archive "${VERIFIC_ROOT}/${module}/${module}-linux.a")
        if(NOT EXISTS "${archive}")
            message(FATAL_ERROR "VERIFIC_ROOT: ${archive} does not exist")
        endif()
        list(APPEND verific_archives "${archive}")
        list(APPEND verific_includes "${VERIFIC_ROOT}/${module}")
    endforeach()

    # The archives become one shared library: whoever links it sees one and the same global library set and table of
    # source files, which an archive linked into several of them would give each its own.
    file(GENERATE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/verific_archives.cpp CONTENT "// The archives are the content.\n")
    add_library(verific SHARED ${CMAKE_CURRENT_BINARY_DIR}/verific_archives.cpp)
    # For this build alone: public headers need none of these.
    target_include_directories(verific SYSTEM INTERFACE "$<BUILD_INTERFACE:${verific_includes}>")
    target_link_options(verific PRIVATE -Wl,--whole-archive ${verific_archives} -Wl,--no-whole-archive)
    target_link_libraries(verific PRIVATE ZLIB::ZLIB)
    set_target_properties(verific PROPERTIES LINK_DEPENDS "${verific_archives}")
endif()
