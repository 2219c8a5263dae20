# The documents that are made from what the programs say, or show it.
add_test(NAME Docs.OptionTablesAreThoseOfTheHelp
    COMMAND ${PROJECT_SOURCE_DIR}/scripts/option-tables --check $<TARGET_FILE:vireloce-kit>)
add_test(NAME Docs.TutorialShowsWhatItsCommandsPrint
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/tutorial $<TARGET_FILE_DIR:vireloce-kit>)
add_test(NAME Docs.LinksLeadSomewhere
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/links)
