# Debian packages: `cpack -G DEB` in the build directory makes one per component.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME glabrenimgaf)
set(CPACK_PACKAGE_VENDOR "glabrenimgaf")
set(CPACK_PACKAGE_CONTACT "glabrenimgaf maintainers <maintainers@glabrenimgaf.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/GlabrenimgafPackageTree.cmake)
set(CPACK_GLABRENIMGAF_SOURCE ${PROJECT_SOURCE_DIR})
set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET netlistdb)
    list(APPEND CPACK_COMPONENTS_ALL program)
endif()
if(TARGET netlistdb_python)
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS
    ${PROJECT_BINARY_DIR} ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/analysis
    ${PROJECT_BINARY_DIR}/platform/verific)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libglabrenimgaf0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "Shared library for programs that browse a design, pick probe points or report
clocks, and the netlist database underneath.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libglabrenimgaf-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libglabrenimgaf0 (${same_version})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS netlistdb)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libsimdjson-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "Development files of the library: headers, CMake package, pkg-config files, and
an example to start from.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME netlistdb)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "libglabrenimgaf0 (${same_version})")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "python3, yosys")
set(CPACK_COMPONENT_PROGRAM_DESCRIPTION
    "Program that shows instances, nets, clock domains and probe points of a
design, and searches it by name.")

if(TARGET netlistdb_python)
    # The module is built for one version of the interpreter.
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-netlistdb)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    math(EXPR next_minor "${Python3_VERSION_MINOR} + 1")
    set(this_python "python3 (>= 3.${Python3_VERSION_MINOR}), python3 (<< 3.${next_minor})")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "libglabrenimgaf0 (${same_version}), ${this_python}")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "netlistdb, python3-pandas, yosys")
    set(CPACK_COMPONENT_PYTHON_DESCRIPTION
        "Python module that shows instances, nets, clock domains, crossings and probe
points of a design, and searches it by name.")
endif()

include(CPack)
