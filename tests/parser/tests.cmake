vireloce_test(parser parser/netParser_test.cpp parser/pinParser_test.cpp parser/placeParser_test.cpp
    parser/placeParserFaults_test.cpp)
