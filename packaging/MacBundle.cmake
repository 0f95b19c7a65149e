# Lumenpair.app: `ninja Lumenpair-app`. The launcher is its executable and finds the other programs beside itself, as it
# does everywhere. macdeployqt brings the frameworks and the QML modules that src/screens imports.
set(LMP_MACOS_MINIMUM 13.0 CACHE STRING "Oldest macOS that the bundle says it runs on")

set(iconset ${CMAKE_CURRENT_BINARY_DIR}/lumenpair.iconset)
file(MAKE_DIRECTORY ${iconset})
set(pictures)
foreach(size 16 32 128 256 512)
  math(EXPR double "${size} * 2")
  lmp_icon(${size} ${iconset}/icon_${size}x${size}.png)
  lmp_icon(${double} ${iconset}/icon_${size}x${size}@2x.png)
  list(APPEND pictures ${iconset}/icon_${size}x${size}.png ${iconset}/icon_${size}x${size}@2x.png)
endforeach()
set(icon ${CMAKE_CURRENT_BINARY_DIR}/lumenpair.icns)
add_custom_command(OUTPUT ${icon} COMMAND iconutil -c icns -o ${icon} ${iconset} DEPENDS ${pictures} VERBATIM)

# The sentences that the system shows of the bundle, in Chinese.
set(sentences ${CMAKE_CURRENT_SOURCE_DIR}/macos/zh-Hans.lproj/InfoPlist.strings)
set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_source_files_properties(${sentences} PROPERTIES MACOSX_PACKAGE_LOCATION Resources/zh-Hans.lproj)

add_executable(Lumenpair-app MACOSX_BUNDLE ${PROJECT_SOURCE_DIR}/src/main.cpp ${icon} ${sentences})
target_link_libraries(Lumenpair-app PRIVATE lmp_settings)
set_target_properties(Lumenpair-app PROPERTIES AUTOMOC OFF OUTPUT_NAME Lumenpair
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/macos/Info.plist.in)
foreach(program lumenpair-guardian lumenpair-window lumenpair-terminal lumenpair-sandbox lumenpair-audio)
  add_custom_command(TARGET Lumenpair-app POST_BUILD COMMAND ${CMAKE_COMMAND} -E copy_if_different
    $<TARGET_FILE:${program}> $<TARGET_BUNDLE_CONTENT_DIR:Lumenpair-app>/MacOS VERBATIM)
  add_dependencies(Lumenpair-app ${program})
endforeach()

install(TARGETS Lumenpair-app BUNDLE DESTINATION .)
find_program(LMP_MACDEPLOYQT macdeployqt REQUIRED)
install(CODE "
  set(bundle \"\${CMAKE_INSTALL_PREFIX}/Lumenpair.app\")
  execute_process(COMMAND ${LMP_MACDEPLOYQT} \${bundle} -qmldir=${PROJECT_SOURCE_DIR}/src/screens
    -executable=\${bundle}/Contents/MacOS/lumenpair-window -executable=\${bundle}/Contents/MacOS/lumenpair-terminal
    -executable=\${bundle}/Contents/MacOS/lumenpair-sandbox
    -executable=\${bundle}/Contents/MacOS/lumenpair-audio.so COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND codesign --force --deep --sign - \${bundle} COMMAND_ERROR_IS_FATAL ANY)")
set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME Lumenpair)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
include(CPack)
