# Sources that are made from Unicode's data files (Debian's unicode-data): foundation_generated.
find_file(UNICODE_DATA UnicodeData.txt PATHS /usr/share/unicode REQUIRED)

add_executable(generate_normalization_tables ${CMAKE_CURRENT_LIST_DIR}/normalization_tables.cpp)
target_link_libraries(generate_normalization_tables PRIVATE warnings)

set(foundation_generated ${CMAKE_CURRENT_BINARY_DIR}/normalization_tables.cpp)
add_custom_command(
  OUTPUT ${foundation_generated}
  COMMAND generate_normalization_tables ${UNICODE_DATA} ${foundation_generated}
  DEPENDS generate_normalization_tables ${UNICODE_DATA})
