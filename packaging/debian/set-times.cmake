# Run by cpack before it packs: the files of a package are as old as the last change, not as the build.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference "--date=@$ENV{SOURCE_DATE_EPOCH}" {} +
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
