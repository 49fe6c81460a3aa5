# cpack runs this before it packs. The files of a package get the time of the last commit, not of the build.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
