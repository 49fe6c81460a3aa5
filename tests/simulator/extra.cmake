target_compile_definitions(${target} PRIVATE HARVLINK_SCENES="${PROJECT_SOURCE_DIR}/simulator/scenes"
                                             HARVLINK_SIMULATOR="$<TARGET_FILE:harvlink-sim>")
add_dependencies(${target} harvlink-sim)
