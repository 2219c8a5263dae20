find_package(LibLZMA REQUIRED)
find_package(SQLite3 REQUIRED)
set(VIRELOCE_SHARED "${PROJECT_SOURCE_DIR}/../shared" CACHE PATH
    "Folder of real designs, data/designs, and of tools that judge them; tests skip what is not there")
vireloce_test(kit SHARDS 8
    kit/base/files/outputFile_test.cpp
    kit/base/files/outputPaths_test.cpp
    kit/base/files/outputSet_test.cpp
    kit/base/files/unpack_test.cpp
    kit/base/process/childProcess_test.cpp
    kit/base/process/limits_test.cpp
    kit/base/text/base64_test.cpp
    kit/base/text/decimal_test.cpp
    kit/base/text/escape_test.cpp
    kit/base/text/json_test.cpp
    kit/base/text/text_test.cpp
    kit/design/distance_test.cpp
    kit/design/fixedCells_test.cpp
    kit/design/frame_test.cpp
    kit/design/nameMap_test.cpp
    kit/design/pinOffsets_test.cpp
    kit/design/rowKinds_test.cpp
    kit/engines/color/cell_test.cpp
    kit/engines/color/command_test.cpp
    kit/engines/color/cuts_test.cpp
    kit/engines/color/library_test.cpp
    kit/engines/color/metal_test.cpp
    kit/engines/color/search_test.cpp
    kit/engines/export/command_test.cpp
    kit/engines/export/def_test.cpp
    kit/engines/export/fill_test.cpp
    kit/formats/gds/gds_test.cpp
    kit/engines/export/layout_test.cpp
    kit/engines/export/lefMasks_test.cpp
    kit/engines/export/markers_test.cpp
    kit/engines/gen/cellLibrary_test.cpp
    kit/engines/gen/design_test.cpp
    kit/engines/gen/netlist_test.cpp
    kit/engines/gen/placer_test.cpp
    kit/engines/gen/random_test.cpp
    kit/engines/import/cells_test.cpp
    kit/engines/import/constraints_test.cpp
    kit/engines/import/damage_test.cpp
    kit/engines/import/fixed_test.cpp
    kit/engines/import/gcd_test.cpp
    kit/engines/import/generated_test.cpp
    kit/engines/import/offsets_test.cpp
    kit/engines/import/rows_test.cpp
    kit/engines/lint/damage_test.cpp
    kit/engines/lint/report_test.cpp
    kit/engines/place/fixed_test.cpp
    kit/engines/place/place_test.cpp
    kit/engines/place/progressLine_test.cpp
    kit/engines/place/rescue_test.cpp
    kit/engines/place/rowsMeet_test.cpp
    kit/engines/refine/command_test.cpp
    kit/engines/refine/model_test.cpp
    kit/engines/refine/views_test.cpp
    kit/engines/verify/command_test.cpp
    kit/engines/verify/conflict_test.cpp
    kit/engines/verify/fixed_test.cpp
    kit/engines/verify/kinds_test.cpp
    kit/engines/verify/report_test.cpp
    kit/engines/view/command_test.cpp
    kit/engines/view/picture_test.cpp
    kit/engines/view/scene_test.cpp
    kit/engines/view/ramp_test.cpp
    kit/formats/lefdef/def_test.cpp
    kit/formats/lefdef/example_test.cpp
    kit/formats/lefdef/grammar_test.cpp
    kit/formats/lefdef/lef_test.cpp
    kit/formats/lefdef/library_test.cpp
    kit/formats/lefdef/parts_test.cpp
    kit/formats/lefdef/transform_test.cpp
    kit/formats/placer/colors_test.cpp
    kit/formats/placer/metal_test.cpp
    kit/formats/placer/reader_test.cpp
    kit/geometry/pieces_test.cpp
    kit/geometry/polygon_test.cpp
    kit/layers_test.cpp
    kit/tools/command_test.cpp
    kit/tools/compare/compare_test.cpp
    kit/tools/completion_test.cpp
    kit/tools/flow/flow_test.cpp
    kit/tools/program_test.cpp
    kit/tools/sweep/collect_test.cpp
    kit/tools/sweep/plan_test.cpp
    kit/tools/sweep/plot_test.cpp
    kit/tools/sweep/run_test.cpp
    kit/tools/sweep/study_test.cpp)
target_compile_definitions(test_kit PRIVATE
    VIRELOCE_KIT_COMPLETION="${PROJECT_SOURCE_DIR}/kit/completion/vireloce-kit"
    VIRELOCE_KIT_SOURCES="${PROJECT_SOURCE_DIR}/kit"
    VIRELOCE_KIT_PROGRAM="$<TARGET_FILE:vireloce-kit>"
    VIRELOCE_KIT_EXAMPLES="${PROJECT_SOURCE_DIR}/examples"
    VIRELOCE_PLACE_SCHEMA="${PROJECT_SOURCE_DIR}/kit/engines/place/result.schema.json"
    VIRELOCE_SHARED_FOLDER="${VIRELOCE_SHARED}"
    VIRELOCE_STUDY_SCHEMA="${PROJECT_SOURCE_DIR}/kit/tools/sweep/study.schema.json")
target_link_libraries(test_kit PRIVATE vireloce_kit LibLZMA::LibLZMA SQLite::SQLite3)
add_dependencies(test_kit vireloce-kit)
set_source_files_properties(${CMAKE_CURRENT_LIST_DIR}/tools/command_test.cpp PROPERTIES
    COMPILE_DEFINITIONS VIRELOCE_VERSION="${PROJECT_VERSION}")

# A figure or two of a model, for work on the search for shorter wires.
add_executable(refine_inspect EXCLUDE_FROM_ALL kit/engines/refine/inspect.cpp)
target_link_libraries(refine_inspect PRIVATE vireloce_kit vireloce_refine vireloce_warnings)
