find_package(Qt6 6.4 REQUIRED COMPONENTS Quick)

# The image stores, the controls and the screens, apart from the shared library so that tests see what that
# one hides. Linked whole (by way of virlo-screens): the screens install themselves from static initialisers.
qt_add_library(virlo-screens-static STATIC)
set_target_properties(virlo-screens-static PROPERTIES AUTOMOC ON)
target_include_directories(virlo-screens-static PUBLIC
  "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers"
  "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers/Fullscreen"
  "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers/Interstitial"
  "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers/Video"
)
target_link_libraries(virlo-screens-static PUBLIC virlo-core virlo-platform-ui virlo-platform-media Qt6::Quick)
target_sources(virlo-screens-static PRIVATE
  Storage/VIRLOAdFullscreenImageStore.cpp
  Storage/VIRLOAdInterstitialImageStore.cpp
  Storage/VIRLOAppGridFeaturedImageStore.cpp
  Storage/VIRLOAppGridImageStore.cpp
  Storage/VIRLOCachedImageStore.cpp
  Storage/VIRLOImageStore.cpp
  Utilities/UIButtonVIRLOActionButton.cpp
  Utilities/VIRLOActivityIndicator.cpp
  Utilities/VIRLOButton.cpp
  Utilities/VIRLOCarousel.cpp
  Utilities/VIRLOCarouselElement.cpp
  Utilities/VIRLOCircularProgressLayer.cpp
  Utilities/VIRLOColorSampling.cpp
  Utilities/VIRLOFocusPreference.cpp
  Utilities/VIRLOFrameworkImages.cpp
  Utilities/VIRLORoundedCorners.cpp
  Utilities/VIRLOTimerButton.cpp
  Utilities/VIRLOTimerProgress.cpp
  ViewControllers/Fullscreen/VIRLOAdFullscreenViewController.cpp
  ViewControllers/Interstitial/VIRLOAdInterstitialScreenshots.cpp
  ViewControllers/Interstitial/VIRLOAdInterstitialViewController.cpp
  ViewControllers/Video/VIRLOAdVideoView.cpp
  ViewControllers/Video/VIRLOAdVideoView.h
  ViewControllers/Video/VIRLOAdVideoViewController.cpp
  ViewControllers/Video/VIRLOAdVideoViewController+Playback.cpp
  ViewControllers/Video/VIRLOAdVideoViewController+Reporting.cpp
  ViewControllers/VIRLOAdPresenter.cpp
  ViewControllers/VIRLOAdStoryboardScreens.cpp
  ViewControllers/VIRLOAdViewController.cpp
  ViewControllers/VIRLOAdViewControllerBase.cpp
  ViewControllers/VIRLOFocusLift.cpp
)

qt_add_qml_module(virlo-screens-static
  URI VIRLOAdFramework
  VERSION 1.0
  NO_PLUGIN
  RESOURCE_PREFIX /qt/qml
  OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/qml/VIRLOAdFramework"
  IMPORTS Virlo.UI
  SOURCES
    Utilities/VIRLOButton.h
    Utilities/VIRLOCarousel.h
    Utilities/VIRLOCarouselElement.h
    Utilities/VIRLOTimerButton.h
    Utilities/VIRLOTimerProgress.h
  QML_FILES
    Storyboard/QDXAdFullscreenViewController.qml
    Storyboard/QDXAdSingleViewController.qml
)
# The code that Qt generates from the documents shadows its own names.
get_target_property(generated virlo-screens-static SOURCES)
list(FILTER generated INCLUDE REGEX "/qmlcache/")
set_source_files_properties(${generated} PROPERTIES COMPILE_OPTIONS -Wno-shadow)

qt_add_resources(virlo-screens-static virlo-pictures
  PREFIX "/com.virlohq.VIRLOAdFramework"
  BASE Resources
  FILES
    Resources/Star34-empty.png
    Resources/Star34-full.png
    Resources/Star34-half.png
    Resources/countdown_halo.png
    Resources/countdown_halo_light.png
    Resources/fullscreen_close.png
    Resources/fullscreen_close_dark.png
    Resources/icon_email.png
    Resources/icon_phone.png
    Resources/icon_sms.png
)

add_library(virlo-screens INTERFACE)
target_link_libraries(virlo-screens INTERFACE "$<LINK_LIBRARY:WHOLE_ARCHIVE,virlo-screens-static>")

include("${CMAKE_CURRENT_LIST_DIR}/Framework.cmake")
