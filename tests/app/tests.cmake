# vireloce_test(app app/....cpp)
