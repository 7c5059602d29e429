# Shared build settings: one INTERFACE target with the warning flags and Qt defines that every target links.
add_library(quillfern_options INTERFACE)
target_compile_definitions(quillfern_options INTERFACE
    QT_NO_KEYWORDS
    QT_NO_CAST_FROM_ASCII
    QT_USE_QSTRINGBUILDER
    QT_NO_CAST_TO_ASCII)
if(MSVC)
    target_compile_options(quillfern_options INTERFACE /W4 /permissive- /utf-8)
else()
    target_compile_options(quillfern_options INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast)
endif()
target_include_directories(quillfern_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

# quillfern_core_library(NAME folder LINKS...): a static library of every .cpp in src/<folder>.
function(quillfern_core_library name folder)
    file(GLOB sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp
        ${PROJECT_SOURCE_DIR}/src/${folder}/*.h)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC quillfern_options ${ARGN})
endfunction()

# quillfern_tests(folder LINKS...): one Qt Test executable and one ctest test per tst_*.cpp in tests/<folder>.
function(quillfern_tests folder)
    file(GLOB test_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
    foreach(source IN LISTS test_sources)
        get_filename_component(test_name ${source} NAME_WE)
        add_executable(${test_name} ${source})
        target_link_libraries(${test_name} PRIVATE quillfern_options Qt6::Test ${ARGN})
        add_test(NAME ${folder}/${test_name} COMMAND ${test_name})
        set_tests_properties(${folder}/${test_name} PROPERTIES
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QUILLFERN_FIXTURES=${PROJECT_SOURCE_DIR}/../shared/fixtures"
            TIMEOUT 300)
    endforeach()
endfunction()
