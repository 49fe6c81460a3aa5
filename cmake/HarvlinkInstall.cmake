# Installs the files, in the components library, development, tools and, for Debian, python.
include(GNUInstallDirs)
include(HarvlinkInstallLibrary)
if(HARVLINK_BUILD_CLI OR TARGET harvlink-sim)
    include(HarvlinkInstallPrograms)
endif()
if(HARVLINK_DEBIAN)
    add_subdirectory("${PROJECT_SOURCE_DIR}/packaging/debian" packaging/debian)
endif()
