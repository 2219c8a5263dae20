# vireloce_test(db db/....cpp)
