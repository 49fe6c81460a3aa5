target_link_libraries(${target} PRIVATE harvlink_recording)
