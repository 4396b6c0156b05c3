# What every target of the project shares: language level, warnings, moc, precompiled headers.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core)

add_library(morvane_options INTERFACE)
target_compile_options(morvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
# g++ 12 sees overflows in std::string's operator+ that are not there, in optimised builds (GCC bug 105651).
target_compile_options(morvane_options INTERFACE
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict -Wno-stringop-overflow -Wno-array-bounds>)
# The script library's headers use the words "signals" and "slots" for themselves.
target_compile_definitions(morvane_options INTERFACE QT_NO_KEYWORDS QT_NO_FOREACH)
target_link_libraries(morvane_options INTERFACE Qt6::Core Threads::Threads)

if(MORVANE_SANITIZE STREQUAL "address")
    target_compile_options(morvane_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(morvane_options INTERFACE -fsanitize=address,undefined)
elseif(MORVANE_SANITIZE STREQUAL "fuzzer")
    # Clang only: fuzz/ has programs that libFuzzer drives.
    target_compile_options(morvane_options INTERFACE -fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(morvane_options INTERFACE -fsanitize=address,undefined)
elseif(MORVANE_SANITIZE STREQUAL "thread")
    target_compile_options(morvane_options INTERFACE -fsanitize=thread)
    target_link_options(morvane_options INTERFACE -fsanitize=thread)
endif()

# The headers that nearly every file reads, precompiled once for all targets: a copy of its own would cost each
# 120 MB and some seconds.
set(morvane_common_headers
    <QDateTime> <QList> <QMetaObject> <QObject> <QString> <QVariant>
    <functional> <memory> <optional> <string> <vector>)
add_library(morvane_headers OBJECT ${CMAKE_CURRENT_LIST_DIR}/headers.cpp)
target_link_libraries(morvane_headers PRIVATE morvane_options)
target_precompile_headers(morvane_headers PRIVATE ${morvane_common_headers})

# A target with further headers to precompile has its own copy.
function(morvane_target name)
    if(ARGN)
        target_precompile_headers(${name} PRIVATE ${morvane_common_headers} ${ARGN})
    else()
        target_precompile_headers(${name} REUSE_FROM morvane_headers)
    endif()
endfunction()

# morvane_module(<name> SOURCES <files> [DEPENDS <modules>] [PRIVATE <libraries>] [PRECOMPILE <headers>])
# One folder of src/. DEPENDS lists the modules below that its headers may include.
function(morvane_module name)
    cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PRIVATE;PRECOMPILE" ${ARGN})
    list(TRANSFORM ARG_DEPENDS PREPEND morvane_)
    add_library(morvane_${name} STATIC ${ARG_SOURCES})
    target_include_directories(morvane_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(morvane_${name} PUBLIC morvane_options ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE})
    set_target_properties(morvane_${name} PROPERTIES AUTOMOC ON)
    morvane_target(morvane_${name} ${ARG_PRECOMPILE})
endfunction()

# morvane_program(<binary> SOURCES <files> DEPENDS <modules> [MOC])
# MOC where a file of its own has Q_OBJECT or the like: looking for that, and compiling nothing, takes a second.
function(morvane_program name)
    cmake_parse_arguments(ARG "MOC" "" "SOURCES;DEPENDS;PRIVATE" ${ARGN})
    list(TRANSFORM ARG_DEPENDS PREPEND morvane_)
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} ${ARG_PRIVATE})
    set_target_properties(${name} PROPERTIES AUTOMOC ${ARG_MOC})
    morvane_target(${name})
endfunction()

# Links an allocator that suits what the agent does: many small objects a document, freed at once, with large
# streams between them, after each of which glibc's own walks its whole heap. (10,000 pages with a line of text
# each: 0.59 s against 0.80 s.) Sanitizers bring their own.
function(morvane_allocator name)
    if(CMAKE_BUILD_TYPE STREQUAL "Release" AND NOT MORVANE_SANITIZE)
        pkg_check_modules(TCMALLOC REQUIRED IMPORTED_TARGET libtcmalloc_minimal)
        target_link_libraries(${name} PRIVATE -Wl,--push-state,--no-as-needed PkgConfig::TCMALLOC -Wl,--pop-state)
    endif()
endfunction()

# What only tests use isn't optimised: what they test is, and they take a third of the time to compile. So they have
# precompiled headers of their own. (CMake has no way to take back the build type's own flag but a later one.)
function(morvane_test_headers)
    add_library(morvane_test_headers OBJECT ${PROJECT_SOURCE_DIR}/cmake/headers.cpp)
    target_link_libraries(morvane_test_headers PRIVATE morvane_options GTest::gtest)
    target_compile_options(morvane_test_headers PRIVATE -O0)
    target_precompile_headers(morvane_test_headers PRIVATE ${morvane_common_headers} <gtest/gtest.h>)
endfunction()

function(morvane_test_target name)
    target_compile_options(${name} PRIVATE -O0)
    target_precompile_headers(${name} REUSE_FROM morvane_test_headers)
endfunction()

# A GoogleTest program: as morvane_program.
function(morvane_test_program name)
    cmake_parse_arguments(ARG "MOC" "" "SOURCES;DEPENDS;PRIVATE" ${ARGN})
    list(TRANSFORM ARG_DEPENDS PREPEND morvane_)
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} ${ARG_PRIVATE} morvane_testing)
    set_target_properties(${name} PROPERTIES AUTOMOC ${ARG_MOC})
    morvane_test_target(${name})
endfunction()

# morvane_test(<name> [MOC] [TIMEOUT <s>] SOURCES <files> DEPENDS <modules>): one of which each test is a CTest case.
function(morvane_test name)
    cmake_parse_arguments(ARG "MOC" "TIMEOUT" "SOURCES;DEPENDS;PRIVATE" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 600) # a busy machine takes many times as long as an idle one
    endif()
    set(moc)
    if(ARG_MOC)
        set(moc MOC)
    endif()
    morvane_test_program(test_${name} ${moc} SOURCES ${ARG_SOURCES} DEPENDS ${ARG_DEPENDS}
        PRIVATE ${ARG_PRIVATE} morvane_test_main)
    gtest_discover_tests(test_${name} TEST_PREFIX "${name}." DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
