# One helper makes every subsystem library the same way: sources of the folder, the
# src/ folder as include root, warnings on.
#   tessaphon_library(NAME SOURCES a.cpp b.cpp DEPENDS other_lib [QT])
# A library made with QT links Qt Widgets and runs moc; the core libraries never do.
function(tessaphon_library name)
    cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    # Position-independent, so that the Python module (a shared object) links the same libraries.
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    if(ARG_DEPENDS)
        target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
    endif()
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PUBLIC Qt6::Widgets)
    endif()
endfunction()

# One test executable per library, discovered by CTest. GUI tests set the offscreen
# platform themselves in main(), so gtest_discover_tests may run them at build time.
#   tessaphon_test(NAME SOURCES ... DEPENDS ... [QT])
function(tessaphon_test name)
    cmake_parse_arguments(ARG "QT" "" "SOURCES;DEPENDS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gtest GTest::gmock)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE TESSAPHON_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE Qt6::Widgets Qt6::Test)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
    endif()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
