vireloce_test(legalizer legalizer/globalMove_test.cpp legalizer/graph_test.cpp legalizer/legalizer_test.cpp
    legalizer/model_test.cpp legalizer/steps_test.cpp)
vireloce_test(programs legalizer/ldp_test.cpp legalizer/osr_test.cpp legalizer/tpl_test.cpp
    legalizer/tplosr_test.cpp)
vireloce_test(roads legalizer/roads_test.cpp)
vireloce_test(kernels legalizer/colourKernel_test.cpp legalizer/fastRoad_test.cpp legalizer/gridKernel_test.cpp
    legalizer/pairCosts_test.cpp legalizer/placementMirror_test.cpp legalizer/rowOps_test.cpp
    legalizer/shiftKernel_test.cpp legalizer/spacing_test.cpp legalizer/termTable_test.cpp)
