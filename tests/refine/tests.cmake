vireloce_test(refine
    refine/improve_test.cpp
    refine/model_test.cpp
    refine/moves_test.cpp
    refine/edges_test.cpp
    refine/orderedProgram_test.cpp
    refine/pairTable_test.cpp
    refine/placement_test.cpp
    refine/window_test.cpp
    SHARDS 4)
target_link_libraries(test_refine PRIVATE vireloce_refine)
