find_package(rapidcheck CONFIG REQUIRED)
target_link_libraries(${target} PRIVATE rapidcheck)
