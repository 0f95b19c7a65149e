# The compiler's settings and the few functions every folder's CMakeLists.txt is made of.

if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 14)
  message(FATAL_ERROR
    "GCC ${CMAKE_CXX_COMPILER_VERSION} destroys the temporaries of a co_await expression too early (a use-after-free "
    "at run time). Use Clang 19, e.g. CXX=clang++-19, or GCC 14 and newer.")
endif()

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(LMP_CCACHE ccache)
if(LMP_CCACHE)
  # The slack is what a precompiled header needs to be cached at all.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${LMP_CCACHE})
endif()

add_library(lmp_settings INTERFACE)
target_compile_options(lmp_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                       -Wno-gnu-zero-variadic-macro-arguments $<$<BOOL:${LMP_WERROR}>:-Werror>)
target_compile_definitions(lmp_settings INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
                           QT_NO_FOREACH QT_NO_KEYWORDS)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
endif()
if(NOT APPLE)
  add_link_options(-fuse-ld=lld)
endif()
if(LMP_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(LMP_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()
if(LMP_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

set(LMP_PCH ${CMAKE_CURRENT_LIST_DIR}/Precompiled.h)
set(LMP_SCREENS_PCH ${CMAKE_CURRENT_LIST_DIR}/PrecompiledScreens.h)

# lmp_library(NAME SOURCES... LINK targets...)
# One folder, one static library; LINK names exactly the folders whose headers it may include. A folder includes its
# own headers and its dependencies' as "folder/Type.h", out of a view of src/ that holds those folders alone, so that
# an arrow nobody drew does not compile.
function(lmp_library NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  set(view ${CMAKE_BINARY_DIR}/include/${NAME})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${NAME} SYMBOLIC)
  if(ARG_SOURCES)
    add_library(${NAME} STATIC ${ARG_SOURCES})
    target_include_directories(${NAME} PUBLIC ${view})
    target_link_libraries(${NAME} PUBLIC ${ARG_LINK} PRIVATE lmp_settings)
    target_precompile_headers(${NAME} PRIVATE ${LMP_PCH})
  else()
    add_library(${NAME} INTERFACE)
    target_include_directories(${NAME} INTERFACE ${view})
    target_link_libraries(${NAME} INTERFACE ${ARG_LINK})
  endif()
endfunction()

# lmp_qml_module(NAME URI uri SINGLETONS files... QML files... SOURCES... RESOURCES... DEPENDENCIES uris...
#                LINK targets...)
# One folder of screens, one static library, one QML module. A program that links it has the module built in: nothing
# is looked for on disk, and every file is compiled ahead of time. C++ includes it as "screens/folder/Type.h".
function(lmp_qml_module NAME)
  cmake_parse_arguments(ARG "" "URI" "SINGLETONS;QML;SOURCES;RESOURCES;DEPENDENCIES;LINK" ${ARGN})
  get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
  set(view ${CMAKE_BINARY_DIR}/include/${NAME}/screens)
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${folder} SYMBOLIC)
  string(REPLACE "." "/" path ${ARG_URI})
  if(ARG_SINGLETONS)
    set_source_files_properties(${ARG_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
  endif()
  qt_add_library(${NAME} STATIC)
  qt_add_qml_module(${NAME} URI ${ARG_URI} VERSION 1.0 RESOURCE_PREFIX /qt/qml NO_PLUGIN
    OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/qml/${path} IMPORT_PATH ${CMAKE_BINARY_DIR}/qml
    DEPENDENCIES QtQuick ${ARG_DEPENDENCIES}
    QML_FILES ${ARG_SINGLETONS} ${ARG_QML} SOURCES ${ARG_SOURCES} RESOURCES ${ARG_RESOURCES})
  # The generated registration includes every registered type by its base name.
  target_include_directories(${NAME} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
  get_filename_component(root ${view} DIRECTORY)
  target_include_directories(${NAME} PUBLIC ${root})
  target_link_libraries(${NAME} PUBLIC Qt6::Quick ${ARG_LINK} PRIVATE lmp_settings)
  target_precompile_headers(${NAME} PRIVATE ${LMP_SCREENS_PCH})
endfunction()
