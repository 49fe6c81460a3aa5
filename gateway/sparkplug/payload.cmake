# What protoc writes is not ours and keeps none of our warnings.
find_package(Protobuf REQUIRED)

set(sparkplug_generated "${CMAKE_CURRENT_BINARY_DIR}/sparkplug_generated")
set(sparkplug_proto "${CMAKE_CURRENT_LIST_DIR}/sparkplug_b.proto")
file(MAKE_DIRECTORY "${sparkplug_generated}")
add_custom_command(OUTPUT "${sparkplug_generated}/sparkplug_b.pb.cc" "${sparkplug_generated}/sparkplug_b.pb.h"
                   COMMAND protobuf::protoc --cpp_out=${sparkplug_generated} -I "${CMAKE_CURRENT_LIST_DIR}"
                           "${sparkplug_proto}"
                   DEPENDS "${sparkplug_proto}" protobuf::protoc VERBATIM)
add_library(harvlink_sparkplug_payload STATIC "${sparkplug_generated}/sparkplug_b.pb.cc"
                                              "${sparkplug_generated}/sparkplug_b.pb.h")
target_compile_features(harvlink_sparkplug_payload PUBLIC cxx_std_20)
set_target_properties(harvlink_sparkplug_payload PROPERTIES POSITION_INDEPENDENT_CODE ON UNITY_BUILD OFF)
target_compile_options(harvlink_sparkplug_payload PRIVATE -w)
if(HARVLINK_SANITIZE)
    target_compile_options(harvlink_sparkplug_payload PRIVATE -fsanitize=${HARVLINK_SANITIZE})
endif()
target_include_directories(harvlink_sparkplug_payload SYSTEM PUBLIC "${sparkplug_generated}")
target_link_libraries(harvlink_sparkplug_payload PUBLIC protobuf::libprotobuf-lite)
