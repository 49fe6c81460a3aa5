# Installs the files for programs that use the library. Shared object and archive have an export file each, and the
# configuration file of the package chooses between them.
include(CMakePackageConfigHelpers)

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/harvlink")

# harvlink_install_library(<target> <kind>): what a CMake project sees as harvlink::<kind>.
function(harvlink_install_library target kind)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${kind})
    install(TARGETS ${target} EXPORT harvlink-${kind}
            RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT library
            LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development
            ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
            INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    install(EXPORT harvlink-${kind} NAMESPACE harvlink:: DESTINATION "${package_folder}" COMPONENT development)
endfunction()

if(BUILD_SHARED_LIBS)
    harvlink_install_library(harvlink shared)
    harvlink_install_library(harvlink_static static)
else()
    harvlink_install_library(harvlink static)
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/harvlink" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.h")

# OpenConnection refuses a program whose headers have another version than the library, to the last digit. A CMake project
# that asks for an older version is compiled with the headers of this one, so it works.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/harvlink-config-version.cmake" COMPATIBILITY SameMajorVersion)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/harvlink-config.cmake.in"
                              "${PROJECT_BINARY_DIR}/harvlink-config.cmake" INSTALL_DESTINATION "${package_folder}")
install(FILES "${PROJECT_BINARY_DIR}/harvlink-config.cmake" "${PROJECT_BINARY_DIR}/harvlink-config-version.cmake"
        DESTINATION "${package_folder}" COMPONENT development)

# The file finds its prefix from its own place, unless the folder of the libraries is an absolute path.
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE pc_libdir)
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_INCLUDEDIR BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE pc_includedir)
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
    string(REGEX REPLACE "[^/]+" ".." pc_prefix "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    string(PREPEND pc_prefix "\${pcfiledir}/")
endif()
set(pc_static_options "")
set(pc_system_libraries "-lstdc++ -lm -pthread")
if(WIN32)
    set(pc_static_options "\nCflags.private: -DHARVLINK_STATIC")
    set(pc_system_libraries "-lws2_32 -lwinmm ${pc_system_libraries}")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/harvlink.pc.in" "${PROJECT_BINARY_DIR}/harvlink.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/harvlink.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
# The documents link to them.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
        USE_SOURCE_PERMISSIONS PATTERN "__pycache__" EXCLUDE)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/csharp/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}/csharp" COMPONENT development
        FILES_MATCHING PATTERN "*.cs")
install(FILES "${PROJECT_SOURCE_DIR}/tools/wireshark/README.md" "${PROJECT_SOURCE_DIR}/tools/wireshark/harvlink.lua"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}/tools/wireshark" COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/simulator/scenes/example.toml"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}/simulator/scenes" COMPONENT development)
foreach(folder IN ITEMS csharp python)
    install(FILES "${PROJECT_SOURCE_DIR}/${folder}/README.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}/${folder}"
            COMPONENT development)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/SECURITY.md" "${PROJECT_SOURCE_DIR}/CONTRIBUTING.md"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
# Debian wants these under other names.
if(NOT HARVLINK_DEBIAN)
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/CHANGELOG.md"
            DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
endif()
