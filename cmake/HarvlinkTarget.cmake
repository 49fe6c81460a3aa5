# A program that was not built here, such as the Python interpreter, can load a library with a sanitizer only if the runtime
# of the sanitizer is a shared object. Our own programs must then use the same object. g++ does this by default, clang does
# not. Such a program never loads a fuzzer.
unset(runtime)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND HARVLINK_SANITIZE MATCHES "address|thread")
    set(runtime libasan.so)
    if(HARVLINK_SANITIZE MATCHES "thread")
        set(runtime libtsan.so)
    endif()
elseif(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND HARVLINK_SANITIZE MATCHES "address" AND NOT HARVLINK_SANITIZE MATCHES "fuzzer")
    set(runtime libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so)
    set(HARVLINK_SANITIZER_IS_STATIC_BY_DEFAULT ON)
endif()
if(DEFINED runtime)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${runtime}
                    OUTPUT_VARIABLE HARVLINK_SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    cmake_path(GET HARVLINK_SANITIZER_RUNTIME PARENT_PATH HARVLINK_SANITIZER_FOLDER)
endif()

# harvlink_leave_out_other_systems(<list>): takes the sources out of the list that are not for the system of the build.
function(harvlink_leave_out_other_systems list)
    set(other windows)
    if(WIN32)
        set(other posix)
    endif()
    set(sources ${${list}})
    list(FILTER sources EXCLUDE REGEX "/${other}/[^/]*$")
    set(${list} ${sources} PARENT_SCOPE)
endfunction()

# harvlink_target(<target>): the language level, warnings and sanitizers that every target of the project has.
function(harvlink_target target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
    if(MSVC)
        # The two that are off: an exported class has a base or member that is not exported. Who uses the C++ interface has the
        # same standard library.
        target_compile_options(${target} PRIVATE /W4 /wd4251 /wd4275 /utf-8 /permissive- /fp:precise)
    else()
        target_compile_options(${target} PRIVATE -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    endif()
    if(WIN32)
        target_compile_definitions(${target} PRIVATE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0A00)
        if(NOT MSVC) # no library of the compiler beside ours
            target_link_options(${target} PRIVATE -static)
        endif()
    endif()
    # Times beyond the year 2038, where the system has them only on request.
    if(CMAKE_SYSTEM_NAME STREQUAL Linux AND CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_compile_definitions(${target} PRIVATE _TIME_BITS=64 _FILE_OFFSET_BITS=64)
    endif()
    if(HARVLINK_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE $<IF:$<BOOL:${MSVC}>,/WX,-Werror>)
    endif()
    if(HARVLINK_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${HARVLINK_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${HARVLINK_SANITIZE})
        if(HARVLINK_SANITIZER_IS_STATIC_BY_DEFAULT)
            target_link_options(${target} PRIVATE -shared-libasan "-Wl,-rpath,${HARVLINK_SANITIZER_FOLDER}")
        endif()
    endif()
    if(CMAKE_UNITY_BUILD)
        harvlink_merge_folders(${target})
    endif()
endfunction()

# harvlink_runnable(<target> <variable>): the path under which others start the program: a test, or what makes its manual page.
# Of a build for another processor that is a script of the same name, which starts the emulator.
function(harvlink_runnable target variable)
    set(path "$<TARGET_FILE:${target}>")
    if(CMAKE_CROSSCOMPILING AND NOT WIN32)
        get_target_property(path ${target} HARVLINK_RUNNABLE)
        if(NOT path)
            harvlink_write_starter(${target} path)
        endif()
    endif()
    set(${variable} "${path}" PARENT_SCOPE)
endfunction()

function(harvlink_write_starter target variable)
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    set(path "${PROJECT_BINARY_DIR}/run/${name}")
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" emulator)
    file(GENERATE OUTPUT "${path}" CONTENT "#!/bin/sh\nexec '${emulator}' '$<TARGET_FILE:${target}>' \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set_target_properties(${target} PROPERTIES HARVLINK_RUNNABLE "${path}")
    set(${variable} "${path}" PARENT_SCOPE)
endfunction()

# harvlink_count_coverage(<target>): counts which of its lines and branches run, if that is asked for. Those of the headers
# of other libraries are left out: nobody asks for them, and they are most of the work.
function(harvlink_count_coverage target)
    if(HARVLINK_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic -fprofile-exclude-files=^/usr/)
        target_link_options(${target} PUBLIC --coverage)
    endif()
endfunction()

# harvlink_merge_folders(<target>): compiles the sources of a folder as one. Most of the compile time goes into the headers of
# other libraries, which are then read once for each folder instead of once for each source.
function(harvlink_merge_folders target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
    # In a merged source, a local name may hide a name of another source, and the unnamed namespaces are one.
    target_compile_options(${target} PRIVATE
                           -Wno-shadow "$<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wshadow=local;-Wno-subobject-linkage>")
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(source IN LISTS sources)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}")
        cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}")
        string(MAKE_C_IDENTIFIER "${folder}" group)
        set_source_files_properties("${source}" PROPERTIES UNITY_GROUP ${group})
    endforeach()
endfunction()
