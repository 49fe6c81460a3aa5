# Installs the programs with their pages and completions. Windows has no place for these.
if(WIN32)
    install(TARGETS harvlink_cli RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    return()
endif()
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
set(generated_folder "${PROJECT_BINARY_DIR}/packaging")
file(MAKE_DIRECTORY "${generated_folder}")
set(page_suffix)
set(zsh_folder "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
# Debian compresses the pages of its packages, and leaves that folder to the user.
if(HARVLINK_DEBIAN)
    find_program(GZIP gzip REQUIRED)
    set(page_suffix .gz)
    set(zsh_folder "${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions")
endif()

# harvlink_install_output(<target> <folder> <file> <command>...): installs as <file> what the command prints once the target
# is built. What is called .gz is compressed.
function(harvlink_install_output target folder file)
    set(output "${generated_folder}/${file}")
    set(finish "${CMAKE_COMMAND}" -E rename "${output}.part" "${output}")
    if(file MATCHES "[.]gz$")
        set(finish "${GZIP}" -9nc "${output}.part" > "${output}")
    endif()
    file(GLOB_RECURSE inputs CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/packaging/man*")
    add_custom_command(OUTPUT "${output}" COMMAND ${ARGN} > "${output}.part" COMMAND ${finish}
                       DEPENDS ${target} ${inputs} VERBATIM COMMENT "Generating ${file}")
    add_custom_target(harvlink_install_${file} ALL DEPENDS "${output}")
    if(NOT DEFINED component)
        set(component tools)
    endif()
    install(FILES "${output}" DESTINATION "${folder}" COMPONENT ${component})
endfunction()

# harvlink_install_program(<target> <name> [<component>]): the program and its page. It finds the library wherever both are put together.
function(harvlink_install_program target name)
    set(component tools ${ARGN})
    list(GET component -1 component)
    file(RELATIVE_PATH libraries "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    harvlink_runnable(${target} program)
    install(TARGETS ${target} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT ${component})
    harvlink_install_output(${target} "${CMAKE_INSTALL_MANDIR}/man1" "${name}.1${page_suffix}"
                            "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/packaging/man_page.py" "${program}"
                            "${PROJECT_SOURCE_DIR}/packaging/man/${name}.txt" ${PROJECT_VERSION})
endfunction()

# harvlink_install_command_pages(<target>): a page for each command of a program. Only the program knows which there are.
function(harvlink_install_command_pages target)
    set(folder "${generated_folder}/commands")
    harvlink_runnable(${target} program)
    set(compress)
    if(HARVLINK_DEBIAN)
        set(compress --compress)
    endif()
    add_custom_command(OUTPUT "${folder}.done"
                       COMMAND "${CMAKE_COMMAND}" -E rm -rf "${folder}"
                       COMMAND "${Python3_EXECUTABLE}" "${PROJECT_SOURCE_DIR}/packaging/man_page.py" --commands ${compress}
                               "${program}" "${folder}" ${PROJECT_VERSION}
                       COMMAND "${CMAKE_COMMAND}" -E touch "${folder}.done"
                       DEPENDS ${target} "${PROJECT_SOURCE_DIR}/packaging/man_page.py" VERBATIM
                       COMMENT "Generating the pages of the commands")
    add_custom_target(harvlink_install_command_pages ALL DEPENDS "${folder}.done")
    install(DIRECTORY "${folder}/" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
endfunction()

if(HARVLINK_BUILD_CLI)
    harvlink_install_program(harvlink_cli harvlink)
    harvlink_install_command_pages(harvlink_cli)
    harvlink_runnable(harvlink_cli program)
    harvlink_install_output(harvlink_cli "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" harvlink
                            "${program}" completion bash)
    harvlink_install_output(harvlink_cli "${zsh_folder}" _harvlink
                            "${program}" completion zsh)
endif()
if(TARGET harvlink-sim)
    harvlink_install_program(harvlink-sim harvlink-sim)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/simulator/scenes" DESTINATION "${CMAKE_INSTALL_DATADIR}/harvlink"
            COMPONENT tools)
endif()
if(TARGET harvlink-gateway)
    harvlink_install_program(harvlink-gateway harvlink-gateway gateway)
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/packaging/prometheus" DESTINATION "${CMAKE_INSTALL_DATADIR}/harvlink-gateway"
            COMPONENT gateway)
endif()
