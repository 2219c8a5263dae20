vireloce_test(legalizer legalizer/globalMove_test.cpp legalizer/graph_test.cpp legalizer/legalizer_test.cpp
    legalizer/model_test.cpp legalizer/steps_test.cpp)
vireloce_test(programs legalizer/ldp_test.cpp legalizer/osr_test.cpp legalizer/tpl_test.cpp
    legalizer/tplosr_test.cpp)
vireloce_test(roads SHARDS 2 legalizer/roads_test.cpp legalizer/literalRows_test.cpp)
vireloce_test(kernels SHARDS 2
    legalizer/colourKernel_test.cpp legalizer/contracts_test.cpp legalizer/fastRoad_test.cpp
    legalizer/fullGridKernel_test.cpp legalizer/fullShiftKernel_test.cpp legalizer/gridKernel_test.cpp
    legalizer/gridPath_test.cpp legalizer/layerStore_test.cpp legalizer/longRow_test.cpp
    legalizer/pairCosts_test.cpp legalizer/pairGaps_test.cpp legalizer/placementMirror_test.cpp
    legalizer/profileOps_test.cpp legalizer/shiftKernel_test.cpp legalizer/siteCosts_test.cpp
    legalizer/stretch_test.cpp legalizer/termTable_test.cpp)

# On designs of real size, see scripts/literal-tests.
add_executable(check_literally EXCLUDE_FROM_ALL legalizer/check_literally.cpp)
target_include_directories(check_literally PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_options(check_literally PRIVATE -O3)
target_link_libraries(check_literally PRIVATE vireloce_core vireloce_warnings)
