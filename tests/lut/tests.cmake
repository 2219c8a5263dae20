vireloce_test(lut lut/cell_test.cpp lut/cellReader_test.cpp lut/colorFile_test.cpp lut/facing_test.cpp
    lut/lutable_test.cpp lut/safeDist_test.cpp)
