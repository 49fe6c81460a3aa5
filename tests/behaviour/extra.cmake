target_compile_definitions(${target} PRIVATE HARVLINK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
