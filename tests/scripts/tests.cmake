foreach(rule said refused)
    add_test(NAME Scripts.PackagesAreInstalledOnlyIf.${rule}
        COMMAND ${CMAKE_CURRENT_LIST_DIR}/installing ${rule})
endforeach()
