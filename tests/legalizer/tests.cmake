# vireloce_test(legalizer legalizer/....cpp)
