file(GLOB gateway_sparkplug_tests CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/gateway/sparkplug/*.cpp")
target_sources(${target} PRIVATE ${gateway_sparkplug_tests})
if(NOT TARGET harvlink_gateway_core)
    add_subdirectory("${PROJECT_SOURCE_DIR}/gateway" "${PROJECT_BINARY_DIR}/gateway")
endif()
target_link_libraries(${target} PRIVATE harvlink_gateway_core)
if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/gateway/sparkplug/extra.cmake")
    include("${CMAKE_CURRENT_SOURCE_DIR}/gateway/sparkplug/extra.cmake")
endif()
target_compile_definitions(${target} PRIVATE HARVLINK_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
# The program as a plant has it: signals, a bad file, a real Prometheus server, the commands of its page in the documents.
if(NOT HARVLINK_SANITIZE)
    find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
    foreach(name program hostile life)
        add_test(NAME gateway.${name} COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/gateway/${name}_test.py"
                                              $<TARGET_FILE:harvlink-gateway> "${PROJECT_SOURCE_DIR}")
        set_tests_properties(gateway.${name} PROPERTIES TIMEOUT 180 ENVIRONMENT PYTHONDONTWRITEBYTECODE=1)
    endforeach()
    add_dependencies(${target} harvlink-gateway)
endif()
# What a program takes from the library can be seen where the library is a file of its own.
if(NOT HARVLINK_SANITIZE AND BUILD_SHARED_LIBS AND TARGET harvlink_cli)
    add_test(NAME gateway.reads_only
             COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/gateway/reads_only_test.py"
                     $<TARGET_FILE:harvlink-gateway> $<TARGET_FILE:harvlink> $<TARGET_FILE:harvlink_cli>)
    add_dependencies(${target} harvlink_cli)
endif()
