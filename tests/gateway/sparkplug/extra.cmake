# Tests of the edge node run against a real mosquitto, which Debian keeps out of a user's path.
find_program(HARVLINK_MOSQUITTO mosquitto PATHS /usr/sbin /sbin REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(MOSQUITTO REQUIRED IMPORTED_TARGET libmosquitto)
target_link_libraries(${target} PRIVATE PkgConfig::MOSQUITTO)
target_compile_definitions(${target} PRIVATE HARVLINK_MOSQUITTO="${HARVLINK_MOSQUITTO}"
                                              HARVLINK_SPARKPLUG_HOST="${CMAKE_CURRENT_SOURCE_DIR}/gateway/sparkplug/host")

# Each assertion is a test of its name, but all look at the same two lives of a node, which one process lives once.
set(sparkplug_tests "${CMAKE_CURRENT_SOURCE_DIR}/gateway/sparkplug")
file(GLOB checklist_sources CONFIGURE_DEPENDS "${sparkplug_tests}/checklist/*.cpp")
add_executable(harvlink_test_sparkplug_checklist ${checklist_sources} "${sparkplug_tests}/Host.cpp"
                                                 "${sparkplug_tests}/MqttPackets.cpp" "${sparkplug_tests}/Tap.cpp")
harvlink_target(harvlink_test_sparkplug_checklist)
target_compile_options(harvlink_test_sparkplug_checklist PRIVATE $<$<CONFIG:Release>:-O1>)
target_compile_definitions(harvlink_test_sparkplug_checklist PRIVATE HARVLINK_MOSQUITTO="${HARVLINK_MOSQUITTO}")
target_link_libraries(harvlink_test_sparkplug_checklist PRIVATE harvlink_gateway_core harvlink_test_support harvlink_objects
                                                                GTest::gtest_main PkgConfig::MOSQUITTO)
add_test(NAME gateway.SparkplugChecklist COMMAND harvlink_test_sparkplug_checklist)
set_tests_properties(gateway.SparkplugChecklist PROPERTIES TIMEOUT 120)
