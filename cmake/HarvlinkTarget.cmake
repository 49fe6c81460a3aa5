# harvlink_target(<target>): the language level, warnings and sanitizers that every target of the project has.
function(harvlink_target target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE -ffp-contract=off -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(HARVLINK_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(HARVLINK_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${HARVLINK_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${HARVLINK_SANITIZE})
    endif()
endfunction()
