# vireloce_test(parser parser/....cpp)
