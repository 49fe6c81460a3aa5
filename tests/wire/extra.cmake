# This source replaces operator new and delete. In a merged source, the compiler would warn that they do not match.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/wire/AllocationCount.cpp" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
