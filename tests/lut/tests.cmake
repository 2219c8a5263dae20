# vireloce_test(lut lut/....cpp)
