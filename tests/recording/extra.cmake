target_link_libraries(${target} PRIVATE harvlink_recording)
# Tests write captures.
find_library(HARVLINK_PCAP pcap REQUIRED)
target_link_libraries(${target} PRIVATE ${HARVLINK_PCAP})
target_compile_definitions(${target} PRIVATE HARVLINK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
