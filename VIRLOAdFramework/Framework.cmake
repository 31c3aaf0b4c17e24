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
    ../Platform/Media/Engine/GstModule.cpp ../Platform/Foundation/Base/FreeMemory.cpp
    ../Platform/Foundation/Concurrency/DetachedThread.cpp)
  set_target_properties(virlo-media-module PROPERTIES
    PREFIX "" OUTPUT_NAME media
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/virloadframework")
  target_compile_definitions(virlo-media-module PRIVATE "VIRLO_VERSION=\"${PROJECT_VERSION}\"")
  target_include_directories(virlo-media-module
    PRIVATE "$<TARGET_PROPERTY:virlo-platform,INTERFACE_INCLUDE_DIRECTORIES>")
  target_link_libraries(virlo-media-module PRIVATE virlo-media-engine VIRLOAdFramework)
  target_link_options(virlo-media-module PRIVATE -Wl,--no-undefined)
  install(TARGETS virlo-media-module
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/virloadframework" COMPONENT media)
endif()

virlo_public_headers(VIRLOAdFramework framework-dev
  ViewControllers/VIRLOAdPresenter.h
  ../Platform/UI/Presentation/Application.h
)
install(TARGETS VIRLOAdFramework EXPORT VIRLOAdFrameworkScreensTargets
  LIBRARY COMPONENT framework NAMELINK_COMPONENT framework-dev)
install(EXPORT VIRLOAdFrameworkScreensTargets
  NAMESPACE VIRLOAdFramework:: DESTINATION "${VIRLO_CONFIG_FOLDER}" COMPONENT framework-dev)
virlo_pkgconfig(virloadframework framework-dev)
