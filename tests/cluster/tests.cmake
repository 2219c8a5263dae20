# Sweeps by Slurm, by GNU parallel, and killed ones, with what scripts/cluster-tests installs. They take a minute or
# two, so they run only where they are asked for:
#     cmake --preset release -D VIRELOCE_CLUSTER_TESTS=ON && ctest --preset release -L cluster
option(VIRELOCE_CLUSTER_TESTS "Run the tests of sweeps in a cluster among the others" OFF)
if(VIRELOCE_CLUSTER_TESTS)
    foreach(engine submission slurm parallel kill)
        add_test(NAME cluster.${engine} COMMAND ${PROJECT_SOURCE_DIR}/scripts/cluster-tests ${engine})
        set_tests_properties(cluster.${engine} PROPERTIES LABELS cluster RUN_SERIAL ON TIMEOUT 300
            SKIP_REGULAR_EXPRESSION "SKIPPED: "
            ENVIRONMENT VIRELOCE_BIN=$<TARGET_FILE_DIR:vireloce-kit>)
    endforeach()
endif()
