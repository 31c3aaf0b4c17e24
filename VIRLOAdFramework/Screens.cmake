find_package(Qt6 6.4 REQUIRED COMPONENTS Quick)

# The screens: for each a folder of ViewControllers. A screen with a scene also has a QML document in Storyboard, named
# by its identifier. VIRLOAdStoryboardScreens.cpp lists them for the code.
set(VIRLO_SCREENS AppGrid Form Fullscreen Interstitial Video)

# The image stores, the controls and the screens, apart from the shared library so that tests can use what that one hides.
# A program that links it calls VIRLOAdStoryboardScreens::start.
qt_add_library(virlo-screens STATIC)
set_target_properties(virlo-screens PROPERTIES AUTOMOC ON)
target_link_libraries(virlo-screens PUBLIC virlo-core virlo-platform-ui virlo-platform-media Qt6::Quick)
target_include_directories(virlo-screens PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers")
foreach(screen IN LISTS VIRLO_SCREENS)
  file(GLOB sources CONFIGURE_DEPENDS
    RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" ViewControllers/${screen}/*.cpp ViewControllers/${screen}/*.h)
  target_sources(virlo-screens PRIVATE ${sources})
  target_include_directories(virlo-screens PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/ViewControllers/${screen}")
endforeach()
target_sources(virlo-screens PRIVATE
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
  ViewControllers/VIRLOAdPresenter.cpp
  ViewControllers/VIRLOAdStoryboardScreens.cpp
  ViewControllers/VIRLOAdViewControllerBase.cpp
  ViewControllers/VIRLOAdViewControllerBase+Form.cpp
  ViewControllers/VIRLOFocusLift.cpp
)

file(GLOB scenes CONFIGURE_DEPENDS RELATIVE "${CMAKE_CURRENT_SOURCE_DIR}" Storyboard/*.qml)
qt_add_qml_module(virlo-screens
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
    ViewControllers/Form/VIRLOFormButton.h
    ViewControllers/Form/VIRLOFormTextField.h
  QML_FILES ${scenes}
)
virlo_admit_generated_qml(virlo-screens)

qt_add_resources(virlo-screens virlo-images
  PREFIX "/com.virlohq.VIRLOAdFramework"
  BASE Resources
  FILES
    Resources/AdGridAppStore.png
    Resources/AdGridMail.png
    Resources/AdGridPhone.png
    Resources/AdGridPlay.png
    Resources/AdGridSMS.png
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

include("${CMAKE_CURRENT_LIST_DIR}/Framework.cmake")
