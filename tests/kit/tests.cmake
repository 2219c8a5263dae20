find_package(SQLite3 REQUIRED)
vireloce_test(kit SHARDS 4
    kit/base/escape_test.cpp
    kit/base/json_test.cpp
    kit/base/outputFile_test.cpp
    kit/base/outputPaths_test.cpp
    kit/base/outputSet_test.cpp
    kit/base/program_test.cpp
    kit/base/text_test.cpp
    kit/cellLibrary_test.cpp
    kit/color/cell_test.cpp
    kit/color/command_test.cpp
    kit/color/cuts_test.cpp
    kit/color/library_test.cpp
    kit/color/metal_test.cpp
    kit/color/search_test.cpp
    kit/colors_test.cpp
    kit/command_test.cpp
    kit/compare_test.cpp
    kit/completion_test.cpp
    kit/design_test.cpp
    kit/export/command_test.cpp
    kit/export/def_test.cpp
    kit/export/gds_test.cpp
    kit/export/layout_test.cpp
    kit/export/lefMasks_test.cpp
    kit/export/markers_test.cpp
    kit/export/pieces_test.cpp
    kit/flow/flow_test.cpp
    kit/geometry/polygon_test.cpp
    kit/import/cells_test.cpp
    kit/import/damage_test.cpp
    kit/import/gcd_test.cpp
    kit/import/generated_test.cpp
    kit/import/rows_test.cpp
    kit/input/frame_test.cpp
    kit/input/reader_test.cpp
    kit/lefdef/def_test.cpp
    kit/lefdef/example_test.cpp
    kit/lefdef/lef_test.cpp
    kit/lefdef/nameMap_test.cpp
    kit/lefdef/parts_test.cpp
    kit/lefdef/transform_test.cpp
    kit/lint/damage_test.cpp
    kit/lint/report_test.cpp
    kit/netlist_test.cpp
    kit/place/place_test.cpp
    kit/place/progressLine_test.cpp
    kit/placer_test.cpp
    kit/process/childProcess_test.cpp
    kit/process/limits_test.cpp
    kit/random_test.cpp
    kit/sweep/collect_test.cpp
    kit/sweep/plan_test.cpp
    kit/sweep/plot_test.cpp
    kit/sweep/run_test.cpp
    kit/sweep/study_test.cpp
    kit/verify/command_test.cpp
    kit/verify/conflict_test.cpp
    kit/verify/kinds_test.cpp
    kit/verify/report_test.cpp
    kit/view/command_test.cpp
    kit/view/picture_test.cpp
    kit/view/scene_test.cpp
    kit/view/text_test.cpp)
target_compile_definitions(test_kit PRIVATE
    VIRELOCE_KIT_COMPLETION="${PROJECT_SOURCE_DIR}/kit/completion/vireloce-kit"
    VIRELOCE_KIT_PROGRAM="$<TARGET_FILE:vireloce-kit>"
    VIRELOCE_KIT_EXAMPLES="${PROJECT_SOURCE_DIR}/examples"
    VIRELOCE_PLACE_SCHEMA="${PROJECT_SOURCE_DIR}/kit/place/result.schema.json"
    VIRELOCE_STUDY_SCHEMA="${PROJECT_SOURCE_DIR}/kit/sweep/study.schema.json")
target_link_libraries(test_kit PRIVATE vireloce_kit SQLite::SQLite3)
add_dependencies(test_kit vireloce-kit)
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/command_test.cpp PROPERTIES
    COMPILE_DEFINITIONS VIRELOCE_VERSION="${PROJECT_VERSION}")
