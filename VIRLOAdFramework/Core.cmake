target_include_directories(virlo-core PUBLIC
  "${CMAKE_CURRENT_SOURCE_DIR}"
  "${CMAKE_CURRENT_SOURCE_DIR}/API"
  "${CMAKE_CURRENT_SOURCE_DIR}/DataModel"
  "${CMAKE_CURRENT_SOURCE_DIR}/Storage"
  "${CMAKE_CURRENT_SOURCE_DIR}/TrackingManager"
  "${CMAKE_CURRENT_SOURCE_DIR}/Utilities"
  "${CMAKE_CURRENT_SOURCE_DIR}/Utilities/VAST"
  "${CMAKE_CURRENT_SOURCE_DIR}/Utilities/VAST/Model"
)
target_sources(virlo-core PRIVATE
  VIRLOAdController.cpp
  VIRLOAdFrameworkLogger.cpp
  VIRLOAdReports.cpp
  VIRLOAdScreens.cpp
  VIRLOAdViewController.cpp
  VIRLOConnectionMeasurement.cpp
  VIRLOConnectionQualityMonitor.cpp
  VIRLOConstans.cpp
  VIRLOFormDataSubmitter.cpp
  VIRLOUserProfile.cpp
  API/VIRLOAdServerAPI.cpp
  API/VIRLOAdServerAPI+DeviceData.cpp
  API/VIRLOAdServerAPI+Endpoints.cpp
  API/VIRLOAdServerAPI+Requests.cpp
  API/VIRLOAdServerAPI+Session.cpp
  API/VIRLOAdServerApiImageDownloader.cpp
  API/VIRLOReachability.cpp
  DataModel/VIRLOActionButton.cpp
  DataModel/VIRLOAdItem.cpp
  DataModel/VIRLOAdvertisement.cpp
  DataModel/VIRLOSession.cpp
  Storage/VIRLOAppRequestStore.cpp
  TrackingManager/VIRLOTrackingItem.cpp
  TrackingManager/VIRLOTrackingManager.cpp
  Utilities/VAST/Model/VIRLOVASTAd.cpp
  Utilities/VAST/Model/VIRLOVASTCreative.cpp
  Utilities/VAST/Model/VIRLOVASTImpression.cpp
  Utilities/VAST/Model/VIRLOVASTMediaFile.cpp
  Utilities/VAST/Model/VIRLOVASTWrapperAd.cpp
  Utilities/VAST/VIRLOVASTDocumentLoader.cpp
  Utilities/VAST/VIRLOVASTDocumentReader.cpp
  Utilities/VAST/VIRLOVASTDocumentSession.cpp
  Utilities/VAST/VIRLOVASTDuration.cpp
  Utilities/VAST/VIRLOVASTPath.cpp
  Utilities/VAST/VIRLOVASTTrackingManager.cpp
  Utilities/VAST/VIRLOVASTWrappedAdMerger.cpp
  Utilities/VAST/VIRLOVASTXMLParser.cpp
  Utilities/VIRLOFrameworkBundle.cpp
  Utilities/VIRLOHostText.cpp
  Utilities/VIRLOMimeType.cpp
  Utilities/VIRLOTimestamp.cpp
)
# The server's address is compiled into this one source, so that changing it rebuilds nothing else.
set_source_files_properties(VIRLOConstans.cpp PROPERTIES
  COMPILE_DEFINITIONS "VIRLO_API_BASE_URL=\"${VIRLO_API_BASE_URL}\";VIRLO_VERSION=\"${PROJECT_VERSION}\""
)

# Read together so that a program for VAST alone takes nothing else out of the archive. What it shares with the rest, and
# what has the names of others, stands by itself.
get_target_property(sources virlo-core SOURCES)
foreach(source IN LISTS sources)
  get_filename_component(folder "${source}" DIRECTORY)
  if(folder MATCHES "VAST|API")
    set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${folder}")
  elseif(NOT source MATCHES "Logger|Constans|Bundle|HostText|VIRLOSession")
    set_source_files_properties("${source}" PROPERTIES UNITY_GROUP rest)
  endif()
endforeach()
set_target_properties(virlo-core PROPERTIES UNITY_BUILD_MODE GROUP)
