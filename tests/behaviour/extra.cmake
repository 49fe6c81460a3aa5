target_compile_definitions(${target} PRIVATE HARVLINK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")

# A source that replaces functions of the system stands alone: elsewhere their names mean the originals.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/behaviour/Failure.cpp" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
foreach(function IN ITEMS malloc socket bind connect send sendto recvfrom ppoll syscall)
    target_link_options(${target} PRIVATE "-Wl,--wrap=${function}")
endforeach()
target_link_libraries(${target} PRIVATE ${CMAKE_DL_LIBS})
