# The documents that are made from what the programs say, or show it.
add_test(NAME Docs.OptionTablesAreThoseOfTheHelp
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/option-tables --check $<TARGET_FILE:vireloce-kit>)
add_test(NAME Docs.TutorialShowsWhatItsCommandsPrint
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/tutorial $<TARGET_FILE_DIR:vireloce-kit>)
add_test(NAME Docs.LinksLeadSomewhere
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/links)

# The program in docs/refine.md, as it stands there.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/refine.md)
file(READ ${PROJECT_SOURCE_DIR}/docs/refine.md page)
string(REGEX MATCH "```cpp\n([^`]*)```" code "${page}")
file(CONFIGURE OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/refineExample.cpp CONTENT "${CMAKE_MATCH_1}" @ONLY)
add_executable(refine_example ${CMAKE_CURRENT_BINARY_DIR}/refineExample.cpp)
target_link_libraries(refine_example PRIVATE vireloce_refine)
add_test(NAME Docs.ProgramOfRefineDoesWhatItSays COMMAND refine_example)
set_tests_properties(Docs.ProgramOfRefineDoesWhatItSays PROPERTIES PASS_REGULAR_EXPRESSION "^800 -> 200\n$")
