# How every target of this tree is compiled.
option(DIAGSRUNNER_WERROR "Treat warnings as errors (continuous integration does)" OFF)
option(DIAGSRUNNER_TESTS "Build the tests" ON)
option(DIAGSRUNNER_BENCH "Build the benchmarks" OFF)
option(DIAGSRUNNER_FUZZ "Build the libFuzzer targets (Clang only)" OFF)
option(DIAGSRUNNER_TEST_PROGRAMS "A test program runs in four processes, not in one for each test" OFF)
option(DIAGSRUNNER_UNITY_TESTS "Compile many sources of a test as one; faster, and blind to missing includes" OFF)
set(DIAGSRUNNER_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")

add_library(diags_options INTERFACE)
target_compile_features(diags_options INTERFACE cxx_std_17)
target_include_directories(diags_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(diags_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
    $<$<BOOL:${DIAGSRUNNER_WERROR}>:-Werror>)
# What tests are made of is neither watched by the fuzzer nor checked for undefined behaviour: it
# never ships, and would take a good deal longer to compile.
define_property(TARGET PROPERTY DIAGS_IS_TEST INITIALIZE_FROM_VARIABLE DIAGS_IS_TEST)
set(is_test $<BOOL:$<TARGET_PROPERTY:DIAGS_IS_TEST>>)
# The fuzzer's engine is linked into the fuzz targets alone; every other object is only watched.
if(DIAGSRUNNER_FUZZ)
  target_compile_options(diags_options INTERFACE $<$<NOT:${is_test}>:-fsanitize=fuzzer-no-link>)
endif()
if(DIAGSRUNNER_SANITIZE)
  target_compile_options(diags_options INTERFACE
      -fsanitize=${DIAGSRUNNER_SANITIZE} $<${is_test}:-fno-sanitize=undefined>
      -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(diags_options INTERFACE -fsanitize=${DIAGSRUNNER_SANITIZE})
endif()

# diags_compile_alone(FILE...): sources whose own names are those of others of their target, too. A
# build with CMAKE_UNITY_BUILD, which compiles several sources as one, leaves these by themselves.
function(diags_compile_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# One room of the house: a static library that the shared libraries are put together from, and
# that tests link piece by piece.
function(diags_add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ROOM_SOURCES})
  target_link_libraries(${name} PUBLIC diags_options ${ROOM_LINK})
endfunction()
