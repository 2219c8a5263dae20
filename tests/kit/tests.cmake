find_package(nlohmann_json REQUIRED)
vireloce_test(kit kit/cellLibrary_test.cpp kit/colors_test.cpp kit/command_test.cpp kit/design_test.cpp kit/input/reader_test.cpp
    kit/lint/damage_test.cpp kit/lint/report_test.cpp kit/netlist_test.cpp kit/outputFile_test.cpp
    kit/placer_test.cpp kit/random_test.cpp)
target_compile_definitions(test_kit PRIVATE
    VIRELOCE_KIT_PROGRAM="$<TARGET_FILE:vireloce-kit>"
    VIRELOCE_KIT_EXAMPLES="${PROJECT_SOURCE_DIR}/examples")
target_link_libraries(test_kit PRIVATE vireloce_kit nlohmann_json::nlohmann_json)
add_dependencies(test_kit vireloce-kit)
