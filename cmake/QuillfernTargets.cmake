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

# The user folders every test sees unless it sets its own: a safety net, so that no test reads or writes the
# real home's data, settings, caches or runtime files. The runtime folder must be private to its owner.
set(QUILLFERN_TEST_HOME ${PROJECT_BINARY_DIR}/test-home)
set(quillfern_test_user_folders
    XDG_DATA_HOME=${QUILLFERN_TEST_HOME}/data
    XDG_CONFIG_HOME=${QUILLFERN_TEST_HOME}/config
    XDG_CACHE_HOME=${QUILLFERN_TEST_HOME}/cache
    XDG_STATE_HOME=${QUILLFERN_TEST_HOME}/state
    XDG_RUNTIME_DIR=${QUILLFERN_TEST_HOME}/runtime)
file(MAKE_DIRECTORY ${QUILLFERN_TEST_HOME}/runtime)
file(CHMOD ${QUILLFERN_TEST_HOME}/runtime DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

# quillfern_tests(folder LINKS...): one Qt Test executable and one ctest test per tst_*.cpp in tests/<folder>.
# A test finds its data with QFINDTESTDATA, which looks beside its source file.
function(quillfern_tests folder)
    file(GLOB test_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/tst_*.cpp)
    foreach(source IN LISTS test_sources)
        get_filename_component(test_name ${source} NAME_WE)
        add_executable(${test_name} ${source})
        target_link_libraries(${test_name} PRIVATE quillfern_options Qt6::Test ${ARGN})
        add_test(NAME ${folder}/${test_name} COMMAND ${test_name})
        set_tests_properties(${folder}/${test_name} PROPERTIES
            ENVIRONMENT "QT_QPA_PLATFORM=offscreen;${quillfern_test_user_folders}"
            TIMEOUT 300)
    endforeach()
endfunction()
