include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
find_package(nlohmann_json REQUIRED)

# What hosts link: everything below in one library that exports only what carries VIRLO_EXPORT. The archives are linked
# whole, since hosts may call what the library itself does not.
add_library(VIRLOAdFramework SHARED LibraryStart.cpp $<TARGET_OBJECTS:virlo-screens>)
add_library(VIRLOAdFramework::VIRLOAdFramework ALIAS VIRLOAdFramework)
set_target_properties(VIRLOAdFramework PROPERTIES
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,virlo-core,virlo-platform,virlo-platform-ui,virlo-platform-player,virlo-platform-media")
target_link_libraries(VIRLOAdFramework
  PUBLIC nlohmann_json::nlohmann_json
  PRIVATE virlo-screens)
target_link_options(VIRLOAdFramework PRIVATE "-Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/Exports.map")
set_property(TARGET VIRLOAdFramework APPEND PROPERTY LINK_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/Exports.map")
target_compile_features(VIRLOAdFramework INTERFACE cxx_std_20)

# What plays videos is opened with the first of them, so that a host with none pays nothing for it. It takes what the
# library exports from the library and has the rest of what it needs in itself.
target_sources(VIRLOAdFramework PRIVATE ../Platform/Media/Player/MediaModule.cpp)
target_link_libraries(VIRLOAdFramework PRIVATE ${CMAKE_DL_LIBS})
set_source_files_properties(../Platform/Media/Player/MediaModule.cpp PROPERTIES
  COMPILE_DEFINITIONS "VIRLO_VERSION=\"${PROJECT_VERSION}\"" SKIP_UNITY_BUILD_INCLUSION ON)
if(VIRLO_BUILD_MEDIA)
  add_library(virlo-media-module MODULE
    ../Platform/Media/Engine/GstModule.cpp ../Platform/Foundation/Concurrency/DetachedThread.cpp)
  set_target_properties(virlo-media-module PROPERTIES
    PREFIX "" OUTPUT_NAME media
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/virloadframework")
  target_compile_definitions(virlo-media-module PRIVATE "VIRLO_VERSION=\"${PROJECT_VERSION}\"")
  target_include_directories(virlo-media-module
    PRIVATE "$<TARGET_PROPERTY:virlo-platform,INTERFACE_INCLUDE_DIRECTORIES>")
  target_link_libraries(virlo-media-module PRIVATE virlo-media-engine VIRLOAdFramework)
  target_link_options(virlo-media-module PRIVATE -Wl,--no-undefined)
  install(TARGETS virlo-media-module LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/virloadframework")
endif()

# Hosts write <VIRLOAdFramework/VIRLOAdController.h>, in the build as after the installation.
set(VIRLO_PUBLIC_HEADERS
  VIRLOAdController.h
  VIRLOAdFrameworkLogger.h
  VIRLOConstans.h
  VIRLOUserProfile.h
  ViewControllers/VIRLOAdPresenter.h
  ViewControllers/VIRLOAdViewController.h
  ../Platform/Foundation/Device/Bundle.h
  ../Platform/Foundation/Concurrency/Clock.h
  ../Platform/Foundation/Device/AdvertisingIdentifier.h
  ../Platform/Foundation/Base/Error.h
  ../Platform/Foundation/Base/Exception.h
  ../Platform/Foundation/Base/Export.h
  ../Platform/Foundation/Base/JSON.h
  ../Platform/Foundation/Network/NetworkFlags.h
  ../Platform/Foundation/Concurrency/NotificationCenter.h
  ../Platform/Foundation/Device/Preferences.h
  ../Platform/Foundation/Concurrency/SerialQueue.h
  ../Platform/Foundation/Base/StringFormat.h
  ../Platform/Foundation/Base/SystemLog.h
  ../Platform/Foundation/Network/URL.h
  ../Platform/Foundation/Network/URLSession.h
  ../Platform/UI/Presentation/Application.h
)
set(VIRLO_HEADER_FOLDER "${CMAKE_BINARY_DIR}/include/VIRLOAdFramework")
file(MAKE_DIRECTORY "${VIRLO_HEADER_FOLDER}")
foreach(header IN LISTS VIRLO_PUBLIC_HEADERS)
  get_filename_component(name "${header}" NAME)
  file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}/${header}" "${VIRLO_HEADER_FOLDER}/${name}" SYMBOLIC)
endforeach()
target_include_directories(VIRLOAdFramework INTERFACE
  "$<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>"
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")

set(VIRLO_CONFIG_FOLDER "${CMAKE_INSTALL_LIBDIR}/cmake/VIRLOAdFramework")
configure_package_config_file(VIRLOAdFrameworkConfig.cmake.in VIRLOAdFrameworkConfig.cmake
  INSTALL_DESTINATION "${VIRLO_CONFIG_FOLDER}")
write_basic_package_version_file(VIRLOAdFrameworkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH VIRLO_PREFIX_FROM_PKGCONFIG "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(virloadframework.pc.in virloadframework.pc @ONLY)
install(TARGETS VIRLOAdFramework EXPORT VIRLOAdFrameworkTargets)
install(EXPORT VIRLOAdFrameworkTargets NAMESPACE VIRLOAdFramework:: DESTINATION "${VIRLO_CONFIG_FOLDER}")
install(FILES ${VIRLO_PUBLIC_HEADERS} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/VIRLOAdFramework")
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/VIRLOAdFrameworkConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/VIRLOAdFrameworkConfigVersion.cmake"
  DESTINATION "${VIRLO_CONFIG_FOLDER}")
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/virloadframework.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
