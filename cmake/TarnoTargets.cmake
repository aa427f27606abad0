# Defines tarno_library(), tarno_program() and tarno_test(), which create all targets of their kind.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_POSITION_INDEPENDENT_CODE ON)  # our static libraries may become a part of a shared library
check_pie_supported(LANGUAGES CXX)

if(PROJECT_IS_TOP_LEVEL)
  find_program(TARNO_CCACHE ccache)
  if(TARNO_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${TARNO_CCACHE}")
  endif()
endif()

# Debian's hardening flags (hardening=+all). Some of them exist only for certain processors.
set(TARNO_HARDENING -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
foreach(flag -fcf-protection -mbranch-protection=standard -fstack-clash-protection)
  string(MAKE_C_IDENTIFIER "TARNO_HAS${flag}" has)
  check_cxx_compiler_flag("${flag}" ${has})
  if(${has})
    list(APPEND TARNO_HARDENING "${flag}")
  endif()
endforeach()

# Sets the compiler options of a target of this project. Warnings are not errors, because the new warnings of a newer
# compiler must not keep anybody from building. Developers set CMAKE_COMPILE_WARNING_AS_ERROR.
function(tarno_compile_options target)
  if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
                                             -Wold-style-cast -Wcast-qual -Woverloaded-virtual)
    # Functions take their options as structs whose fields have defaults. Callers set only some of the fields.
    target_compile_options(${target} PRIVATE -Wno-missing-field-initializers)
    # g++ 12 warns about overlaps in std::string's operator+ that cannot occur (GCC bug 105651).
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
  endif()
  # Gives each function a section of its own, so that the linker can drop unused ones.
  target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections)
  if(TARNO_SANITIZE)
    target_compile_definitions(${target} PRIVATE TARNO_SANITIZED)
    target_compile_options(${target} PRIVATE -fsanitize=${TARNO_SANITIZE} -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${TARNO_SANITIZE})
  else()
    target_compile_options(${target} PRIVATE "$<$<CONFIG:Release>:${TARNO_HARDENING}>")
  endif()
  if(TARNO_FUZZ)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# Adds an include root to `target`, so that its folder can be included as "tarno/<folder>/…".
function(tarno_include_root target)
  get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
  set(root "${PROJECT_BINARY_DIR}/include/${target}")
  file(MAKE_DIRECTORY "${root}/tarno")
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${root}/tarno/${folder}" SYMBOLIC)
  target_include_directories(${target} PUBLIC "$<BUILD_INTERFACE:${root}>")
endfunction()

# tarno_library(Foundation SOURCES a.cpp … HEADERS a.hpp … PUBLIC libs… PRIVATE libs…): a static library. Link it as
# Tarno::Foundation.
#
# The target itself is TarnoFoundation, so that its name is unique in a project that contains this one.
#
# Headers are included as "tarno/<folder>/<file>.hpp", where <folder> is the folder of the target. A target can include
# its own folder and those of the targets that it links, and no others: the include root of each target contains a single
# link, to its folder.
#
# A library with HEADERS is installed together with them, for other projects.
function(tarno_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;HEADERS;PUBLIC;PRIVATE" ${ARGN})
  set(target Tarno${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(Tarno::${name} ALIAS ${target})
  tarno_include_root(${target})
  target_link_libraries(${target} PUBLIC ${ARG_PUBLIC} PRIVATE ${ARG_PRIVATE})
  target_compile_features(${target} PUBLIC cxx_std_20)
  tarno_compile_options(${target})
  if(ARG_HEADERS AND PROJECT_IS_TOP_LEVEL)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    install(TARGETS ${target} EXPORT Tarno COMPONENT development
            INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
    get_filename_component(folder "${CMAKE_CURRENT_SOURCE_DIR}" NAME)
    foreach(header ${ARG_HEADERS})
      get_filename_component(subfolder "${folder}/${header}" DIRECTORY)
      install(FILES ${header} COMPONENT development DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/tarno/${subfolder}")
    endforeach()
  endif()
endfunction()

# tarno_program(tarno-status SOURCES a.cpp … LINK libs…): a program that is installed.
function(tarno_program target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  tarno_include_root(${target})
  target_link_libraries(${target} PRIVATE ${ARG_LINK})
  tarno_compile_options(${target})
  # A program runs for about 10 ms. The dynamic linker would take a third of that, so a program loads only libraries that
  # it calls, binds all symbols at the start, and contains the C++ library. Sanitizers need the shared C++ library.
  target_link_options(${target} PRIVATE -Wl,--as-needed -Wl,-z,now -Wl,--gc-sections)
  if(NOT TARNO_SANITIZE)
    target_link_options(${target} PRIVATE -static-libstdc++ -static-libgcc)
  endif()
  install(TARGETS ${target} COMPONENT programs)
  add_dependencies(tarno_programs ${target})
endfunction()

# tarno_test(model_test SOURCES a.cpp … LINK libs… ENVIRONMENT NAME=value…): a GoogleTest program. Each of its tests is a
# test of ctest.
function(tarno_test target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LINK} GTest::gtest_main)
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  tarno_compile_options(${target})
  # The macros of GoogleTest contain an if-else without braces.
  target_compile_options(${target} PRIVATE -Wno-dangling-else)
  gtest_discover_tests(${target} DISCOVERY_TIMEOUT 60 PROPERTIES ENVIRONMENT "${ARG_ENVIRONMENT}")
endfunction()
