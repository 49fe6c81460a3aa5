# The edge node: libmosquitto carries, protobuf encodes.
find_package(PkgConfig REQUIRED)
pkg_check_modules(MOSQUITTO REQUIRED IMPORTED_TARGET libmosquitto)
include("${CMAKE_CURRENT_LIST_DIR}/payload.cmake")

target_link_libraries(harvlink_gateway_core PUBLIC harvlink_sparkplug_payload PRIVATE PkgConfig::MOSQUITTO)
