target_compile_definitions(${target} PRIVATE HARVLINK_SCENES="${PROJECT_SOURCE_DIR}/simulator/scenes")
