# Sources that are made from Unicode's data files (Debian's unicode-data): contacts_generated.
find_file(UNICODE_CASE_FOLDING CaseFolding.txt PATHS /usr/share/unicode REQUIRED)

add_executable(generate_case_folding ${CMAKE_CURRENT_LIST_DIR}/case_folding.cpp)
target_link_libraries(generate_case_folding PRIVATE warnings)

set(contacts_generated ${CMAKE_CURRENT_BINARY_DIR}/case_folding_table.cpp)
add_custom_command(
  OUTPUT ${contacts_generated}
  COMMAND generate_case_folding ${UNICODE_CASE_FOLDING} ${contacts_generated}
  DEPENDS generate_case_folding ${UNICODE_CASE_FOLDING})
