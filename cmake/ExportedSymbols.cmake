# harvlink_limit_exports(<target>): lets nothing leave the shared object but the plain names of exported-symbols.txt and what
# C++ callers of the public headers need.
function(harvlink_limit_exports target)
    set(list "${PROJECT_SOURCE_DIR}/cmake/exported-symbols.txt")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
    file(STRINGS "${list}" names)
    list(JOIN names "; " names)
    set(script "${CMAKE_CURRENT_BINARY_DIR}/exports.map")
    file(CONFIGURE OUTPUT "${script}" @ONLY CONTENT [=[
{
    global:
        @names@;
        extern "C++" {
            harvlink::StatusInformation::*;
            harvlink::operator*;
            harvlink::AxisIndex::operator*;
            harvlink::KinematicsInterface::CheckInputCartPosParams*;
            harvlink::QuorvanController::GetConnectionStatistics*;
            harvlink::Fleet::*;
            "harvlink::Connect(harvlink::ConnectOptions const&, harvlink::StatusInfo&)";
        };
    local: *;
};
]=])
    target_link_options(${target} PRIVATE "-Wl,--version-script=${script}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${script}")
endfunction()
