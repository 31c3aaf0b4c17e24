include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
find_package(nlohmann_json REQUIRED)

# Hosts write <VIRLOAdFramework/VIRLOAdController.h>, in the build as after the installation.
# virlo_public_headers(TARGET COMPONENT HEADER…)
function(virlo_public_headers target component)
  set(folder "${CMAKE_BINARY_DIR}/include/VIRLOAdFramework")
  file(MAKE_DIRECTORY "${folder}")
  foreach(header IN LISTS ARGN)
    get_filename_component(name "${header}" NAME)
    file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}/${header}" "${folder}/${name}" SYMBOLIC)
  endforeach()
  target_include_directories(${target} INTERFACE
    "$<BUILD_INTERFACE:${CMAKE_BINARY_DIR}/include>"
    "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
  install(FILES ${ARGN} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/VIRLOAdFramework" COMPONENT ${component})
endfunction()

# virlo_pkgconfig(NAME COMPONENT): NAME.pc from NAME.pc.in.
file(RELATIVE_PATH VIRLO_PREFIX_FROM_PKGCONFIG "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
function(virlo_pkgconfig name component)
  configure_file(${name}.pc.in ${name}.pc @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT ${component})
endfunction()

# What hosts without Qt link: the core in one library that exports only what carries VIRLO_EXPORT. VIRLOAdFramework has
# the core in itself, so a process links one of the two.
add_library(virlo-core-shared SHARED $<TARGET_OBJECTS:virlo-core> $<TARGET_OBJECTS:virlo-platform>)
set_target_properties(virlo-core-shared PROPERTIES
  OUTPUT_NAME virlo-core
  EXPORT_NAME Core
  LINKER_LANGUAGE CXX
  VERSION ${PROJECT_VERSION}
  SOVERSION ${PROJECT_VERSION_MAJOR}
  LINK_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/Exports.map")
target_link_libraries(virlo-core-shared
  PUBLIC nlohmann_json::nlohmann_json
  PRIVATE virlo-core)
target_link_options(virlo-core-shared PRIVATE
  "-Wl,--version-script=${CMAKE_CURRENT_SOURCE_DIR}/Exports.map" -Wl,--no-undefined)
target_compile_features(virlo-core-shared INTERFACE cxx_std_20)
virlo_public_headers(virlo-core-shared core-dev
  VIRLOAdController.h
  VIRLOAdFrameworkLogger.h
  VIRLOAdReports.h
  VIRLOAdScreens.h
  VIRLOAdViewController.h
  VIRLOConstans.h
  VIRLOUserProfile.h
  DataModel/VIRLOActionButton.h
  DataModel/VIRLOAdItem.h
  DataModel/VIRLOAdvertisement.h
  ../Platform/Foundation/Base/Color.h
  ../Platform/Foundation/Base/Error.h
  ../Platform/Foundation/Base/Exception.h
  ../Platform/Foundation/Base/Export.h
  ../Platform/Foundation/Base/JSON.h
  ../Platform/Foundation/Base/StringFormat.h
  ../Platform/Foundation/Base/SystemLog.h
  ../Platform/Foundation/Concurrency/Clock.h
  ../Platform/Foundation/Concurrency/MainLoop.h
  ../Platform/Foundation/Concurrency/NotificationCenter.h
  ../Platform/Foundation/Concurrency/SerialQueue.h
  ../Platform/Foundation/Device/AdvertisingIdentifier.h
  ../Platform/Foundation/Device/Bundle.h
  ../Platform/Foundation/Device/Preferences.h
  ../Platform/Foundation/Network/NetworkFlags.h
  ../Platform/Foundation/Network/URL.h
  ../Platform/Foundation/Network/URLSession.h
)
install(TARGETS virlo-core-shared EXPORT VIRLOAdFrameworkCoreTargets
  LIBRARY COMPONENT core NAMELINK_COMPONENT core-dev)

# One package of two components: Core, and Screens where they were built.
set(VIRLO_CONFIG_FOLDER "${CMAKE_INSTALL_LIBDIR}/cmake/VIRLOAdFramework")
configure_package_config_file(VIRLOAdFrameworkConfig.cmake.in VIRLOAdFrameworkConfig.cmake
  INSTALL_DESTINATION "${VIRLO_CONFIG_FOLDER}")
write_basic_package_version_file(VIRLOAdFrameworkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT VIRLOAdFrameworkCoreTargets
  NAMESPACE VIRLOAdFramework:: DESTINATION "${VIRLO_CONFIG_FOLDER}" COMPONENT core-dev)
install(FILES
  "${CMAKE_CURRENT_BINARY_DIR}/VIRLOAdFrameworkConfig.cmake"
  "${CMAKE_CURRENT_BINARY_DIR}/VIRLOAdFrameworkConfigVersion.cmake"
  DESTINATION "${VIRLO_CONFIG_FOLDER}" COMPONENT core-dev)
virlo_pkgconfig(virlo-core core-dev)
