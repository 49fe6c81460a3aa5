# This source replaces operator new and delete. In a merged source, the compiler would warn that they do not match.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/wire/AllocationCount.cpp" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
# It asks about 33 million datagrams, which takes a minute unoptimised and a second like this.
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/wire/AccessTest.cpp" PROPERTIES COMPILE_OPTIONS "-O2;-fno-sanitize=all")
