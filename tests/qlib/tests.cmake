vireloce_test(qlib qlib/exact_test.cpp qlib/largeBlock_test.cpp qlib/nameTable_test.cpp
    qlib/qBox_test.cpp qlib/qLibRTree_test.cpp qlib/report_test.cpp qlib/rtree_test.cpp
    qlib/rtreeOrder_test.cpp qlib/slabPool_test.cpp qlib/timer_test.cpp qlib/wordReader_test.cpp)
