# The robustness driver: the placer on randomly damaged inputs.
add_library(mutation_driver STATIC
    mutation/childRun.cpp
    mutation/inputs.cpp
    mutation/mutator.cpp
    mutation/verdict.cpp)
target_include_directories(mutation_driver PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
target_compile_definitions(mutation_driver INTERFACE
    VIRELOCE_GOLDEN="${CMAKE_CURRENT_SOURCE_DIR}/golden"
    VIRELOCE_EXAMPLES="${PROJECT_SOURCE_DIR}/examples")
target_compile_features(mutation_driver PUBLIC cxx_std_20)
target_link_libraries(mutation_driver PRIVATE vireloce_core vireloce_warnings)

add_executable(mutate_inputs mutation/mutate_inputs.cpp)
target_link_libraries(mutate_inputs PRIVATE mutation_driver vireloce_core vireloce_warnings)
add_test(NAME mutation.ShortRun COMMAND mutate_inputs --count 200 --seed 4)
set_tests_properties(mutation.ShortRun PROPERTIES TIMEOUT 300)

vireloce_test(mutation mutation/childRun_test.cpp mutation/mutator_test.cpp mutation/robustness_test.cpp
    mutation/verdict_test.cpp)
target_link_libraries(test_mutation PRIVATE mutation_driver)
