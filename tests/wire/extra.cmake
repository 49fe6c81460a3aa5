# It replaces the operators of the language, and a compiler that sees callers beside them takes them for mismatched.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/wire/AllocationCount.cpp" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
