harvlink_runnable(harvlink-sim program)
target_compile_definitions(${target} PRIVATE HARVLINK_SCENES="${PROJECT_SOURCE_DIR}/simulator/scenes"
                                             HARVLINK_SIMULATOR="${program}")
add_dependencies(${target} harvlink-sim)
