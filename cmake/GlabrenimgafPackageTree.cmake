# Run by CPack over the tree of each package before it is packed: what a Debian package has otherwise than an
# installation elsewhere.
set(names_of_runtime libglabrenimgaf0)
set(names_of_development libglabrenimgaf-dev)
set(names_of_program netlistdb)
set(names_of_python python3-netlistdb)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    set(tree ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr)
    set(name ${names_of_${component}})

    # The libraries lie where the loader looks of its own.
    file(GLOB binaries ${tree}/bin/* ${tree}/lib/*.so.* ${tree}/lib/*/*.so.*
        ${tree}/lib/python3/dist-packages/netlistdb/*.so)
    foreach(binary IN LISTS binaries)
        if(NOT IS_SYMLINK ${binary})
            file(RPATH_REMOVE FILE ${binary})
        endif()
    endforeach()

    file(GLOB pages ${tree}/share/man/man*/*.[1-9])
    foreach(page IN LISTS pages)
        execute_process(COMMAND gzip -9n ${page} COMMAND_ERROR_IS_FATAL ANY)
    endforeach()

    # /usr/local has a directory for zsh of its own.
    if(EXISTS ${tree}/share/zsh/site-functions)
        file(RENAME ${tree}/share/zsh/site-functions ${tree}/share/zsh/vendor-completions)
    endif()

    set(documents ${tree}/share/doc/${name})
    file(MAKE_DIRECTORY ${documents})
    configure_file(${CPACK_GLABRENIMGAF_SOURCE}/COPYRIGHT ${documents}/copyright COPYONLY)
    configure_file(${CPACK_GLABRENIMGAF_SOURCE}/cmake/debian/changelog.in ${documents}/changelog.Debian @ONLY)
    execute_process(COMMAND gzip -9n ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
    # Whatever umask the packages are made under.
    execute_process(COMMAND chmod -R u=rwX,go=rX ${tree} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
