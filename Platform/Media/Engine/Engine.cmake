find_package(PkgConfig REQUIRED)
pkg_check_modules(GST REQUIRED IMPORTED_TARGET GLOBAL gstreamer-1.0>=1.22 gstreamer-app-1.0 gstreamer-base-1.0 gstreamer-video-1.0)

# What plays videos, by GStreamer. It uses only the platform's headers: in a module of its own it takes the platform
# from the library that loads it, instead of a second copy.
add_library(virlo-media-engine STATIC)
target_include_directories(virlo-media-engine
  PUBLIC Engine Player
  PRIVATE "$<TARGET_PROPERTY:virlo-platform,INTERFACE_INCLUDE_DIRECTORIES>")
target_link_libraries(virlo-media-engine PRIVATE PkgConfig::GST)
target_sources(virlo-media-engine PRIVATE
  Engine/FrameStore.cpp
  Engine/GstMediaEngine.cpp
  Engine/GstPipeline.cpp
  Engine/GstPlayback.cpp
  Engine/GstPlayback+Messages.cpp
  Engine/GstReport.cpp
  Engine/GstSinks.cpp
  Engine/GstVideoSource.cpp
  Engine/MediaRuntime.cpp
  Engine/PlaybackMonitor.cpp
  Engine/TransferMeter.cpp
  Engine/VideoDownload.cpp
)

# For programs that link the engine instead of loading the module: they call `MediaEngine::setMaker` at their start.
add_library(virlo-media-linked INTERFACE)
target_link_libraries(virlo-media-linked INTERFACE virlo-media-engine virlo-platform-player)
