vireloce_test(db db/assignment_test.cpp db/designOptions_test.cpp db/design_test.cpp db/evaluation_test.cpp
    db/records_test.cpp db/segmentation_test.cpp db/setUp_test.cpp)
vireloce_test(destruction db/destruction_test.cpp)
