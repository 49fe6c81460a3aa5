if(NOT TARGET harvlink_cli_core)
    add_subdirectory("${PROJECT_SOURCE_DIR}/cli" "${PROJECT_BINARY_DIR}/cli")
endif()
target_link_libraries(${target} PRIVATE harvlink_cli_core)
add_dependencies(${target} harvlink_cli)
harvlink_runnable(harvlink_cli program)
target_compile_definitions(${target} PRIVATE HARVLINK_PROGRAM="${program}"
                                             HARVLINK_DOCUMENTS="${PROJECT_SOURCE_DIR}/docs")
