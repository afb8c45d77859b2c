# GoogleTest for a cross build, compiled from its sources for the target (Debian's googletest
# package installs them in /usr/src/googletest), as the targets GTest::gtest and GTest::gtest_main.
set(KXAC_GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest sources, for cross builds")
if(NOT EXISTS ${KXAC_GTEST_SOURCE_DIR}/googletest/CMakeLists.txt)
    message(FATAL_ERROR "No GoogleTest sources in ${KXAC_GTEST_SOURCE_DIR} (Debian: googletest)")
endif()
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${KXAC_GTEST_SOURCE_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(lib gtest gtest_main)
    if(NOT TARGET GTest::${lib})
        add_library(GTest::${lib} ALIAS ${lib})
    endif()
endforeach()
