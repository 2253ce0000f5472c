# What `cmake --install` puts where. Four components: runtime (the libraries), development (headers, CMake package,
# pkg-config files, example), program and python. Everything finds everything else by relative paths, so that an
# installation can be moved as a whole.
include(CMakePackageConfigHelpers)

set(glabrenimgaf_headers_dir ${CMAKE_INSTALL_INCLUDEDIR}/glabrenimgaf)
set(glabrenimgaf_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/glabrenimgaf)
set(glabrenimgaf_data_dir ${CMAKE_INSTALL_DATADIR}/glabrenimgaf)
file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
file(RELATIVE_PATH prefix_from_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")

# Libraries and their headers.
set_target_properties(glabrenimgaf glabrenimgaf_analysis verific PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS glabrenimgaf glabrenimgaf_analysis verific EXPORT glabrenimgafTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY include/netlistdb DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILES_MATCHING PATTERN "*.h")
install(EXPORT glabrenimgafTargets NAMESPACE glabrenimgaf:: DESTINATION ${glabrenimgaf_package_dir}
    COMPONENT development)

# The program, and the reader that it is made with.
if(TARGET netlistdb)
    set_target_properties(netlistdb PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
    install(TARGETS netlistdb RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
    install(FILES docs/netlistdb.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT program)
    # Verilog models of cells become tables with these; the program looks for them from where it stands.
    install(PROGRAMS families/derive.py DESTINATION ${CMAKE_INSTALL_DATADIR}/netlistdb/families COMPONENT program)
    install(FILES families/model_clocks.py families/models.py
        DESTINATION ${CMAKE_INSTALL_DATADIR}/netlistdb/families COMPONENT program)
    install(FILES tools/completion/netlistdb.bash RENAME netlistdb
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT program)
    install(FILES tools/completion/_netlistdb
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT program)

    target_include_directories(yosys_reader INTERFACE $<INSTALL_INTERFACE:${glabrenimgaf_headers_dir}>)
    install(TARGETS yosys_reader EXPORT glabrenimgafYosysReaderTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/glabrenimgaf COMPONENT development)
    install(FILES frontend/yosys/YosysReader.h DESTINATION ${glabrenimgaf_headers_dir}/yosys COMPONENT development)
    install(EXPORT glabrenimgafYosysReaderTargets NAMESPACE glabrenimgaf:: DESTINATION ${glabrenimgaf_package_dir}
        COMPONENT development)
endif()

# The Python package, below a directory on the path of the interpreter.
if(TARGET netlistdb_python)
    set(GLABRENIMGAF_PYTHON_DIR lib/python3/dist-packages CACHE STRING
        "Where the Python package goes, relative to the prefix")
    set(package_dir ${CMAKE_INSTALL_PREFIX}/${GLABRENIMGAF_PYTHON_DIR}/netlistdb)
    file(RELATIVE_PATH libraries_from_package ${package_dir} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(netlistdb_python PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_package}")
    install(TARGETS netlistdb_python LIBRARY DESTINATION ${GLABRENIMGAF_PYTHON_DIR}/netlistdb COMPONENT python)
    install(DIRECTORY python/netlistdb DESTINATION ${GLABRENIMGAF_PYTHON_DIR} COMPONENT python
        FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
endif()

# How others find it.
configure_package_config_file(cmake/glabrenimgafConfig.cmake.in glabrenimgafConfig.cmake
    INSTALL_DESTINATION ${glabrenimgaf_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(glabrenimgafConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/glabrenimgafConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/glabrenimgafConfigVersion.cmake
    DESTINATION ${glabrenimgaf_package_dir} COMPONENT development)
set(pkgconfig_files glabrenimgaf glabrenimgaf-analysis)
if(NOT VERIFIC_ROOT)
    list(APPEND pkgconfig_files glabrenimgaf-verific)
endif()
foreach(name IN LISTS pkgconfig_files)
    configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT development)
endforeach()

# Something to start from.
install(DIRECTORY examples/consume DESTINATION ${glabrenimgaf_data_dir}/examples COMPONENT development
    FILES_MATCHING PATTERN "CMakeLists.txt" PATTERN "Makefile" PATTERN "*.cpp" PATTERN "*.md")
install(FILES designs/soc_elaborated.json DESTINATION ${glabrenimgaf_data_dir}/designs COMPONENT development)
