add_test(NAME binding.header_alone COMMAND "${PROJECT_SOURCE_DIR}/script/checks/header_alone" include/harvlink/harvlink_c.h
         WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}")
if(BUILD_SHARED_LIBS)
    add_test(NAME binding.exported_names COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/binding/exported-names" $<TARGET_FILE:harvlink>
             "${PROJECT_SOURCE_DIR}/cmake/exported-symbols.txt")
endif()
# Its directive for the whole file would reach the others.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/binding/BothInterfacesTest.cpp" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
