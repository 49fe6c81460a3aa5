# For a build for Windows on another system: SQLite from the sources that script/setup windows unpacks, under the name that its
# package has. Its programs stay out; what makes the one source of it runs here.
set(HARVLINK_SQLITE_SOURCE "${PROJECT_SOURCE_DIR}/build/sources/sqlite3" CACHE PATH "Sources of SQLite as its authors released them")
if(NOT EXISTS "${HARVLINK_SQLITE_SOURCE}/configure")
    message(FATAL_ERROR "There is no SQLite in ${HARVLINK_SQLITE_SOURCE}. Run: script/setup windows")
endif()
enable_language(C)
set(sqlite_folder "${PROJECT_BINARY_DIR}/sqlite")
file(MAKE_DIRECTORY "${sqlite_folder}")
add_custom_command(
    OUTPUT "${sqlite_folder}/sqlite3.c" "${sqlite_folder}/sqlite3.h"
    COMMAND sh -c "{ '${HARVLINK_SQLITE_SOURCE}/configure' --quiet --disable-tcl --disable-readline && make sqlite3.c; } >making.log 2>&1"
    WORKING_DIRECTORY "${sqlite_folder}"
    COMMENT "Making the one source of SQLite"
    VERBATIM)
add_library(harvlink_sqlite STATIC "${sqlite_folder}/sqlite3.c")
target_include_directories(harvlink_sqlite SYSTEM INTERFACE "${sqlite_folder}")
target_compile_definitions(harvlink_sqlite PRIVATE SQLITE_OMIT_LOAD_EXTENSION)
# Its warnings are not ours.
target_compile_options(harvlink_sqlite PRIVATE -w)
set_target_properties(harvlink_sqlite PROPERTIES UNITY_BUILD OFF)
add_library(SQLite::SQLite3 ALIAS harvlink_sqlite)
