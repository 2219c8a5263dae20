# vireloce_test(qlib qlib/....cpp)
