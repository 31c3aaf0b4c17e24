find_package(PkgConfig REQUIRED)
pkg_check_modules(GST REQUIRED IMPORTED_TARGET GLOBAL gstreamer-1.0>=1.22 gstreamer-app-1.0 gstreamer-base-1.0 gstreamer-video-1.0)

# What plays clips, by GStreamer. It only names the platform's headers: where it lands in a module of its own, the
# platform is the library's that loads it, not a second one.
add_library(virlo-media-engine STATIC)
target_include_directories(virlo-media-engine
  PUBLIC Engine Player
  PRIVATE "$<TARGET_PROPERTY:virlo-platform,INTERFACE_INCLUDE_DIRECTORIES>")
target_link_libraries(virlo-media-engine PRIVATE PkgConfig::GST)
target_sources(virlo-media-engine PRIVATE
  Engine/ClipDownload.cpp
  Engine/FrameStore.cpp
  Engine/GstClipSource.cpp
  Engine/GstMediaEngine.cpp
  Engine/GstPipeline.cpp
  Engine/GstPlayback.cpp
  Engine/GstReport.cpp
  Engine/GstSinks.cpp
  Engine/MediaRuntime.cpp
  Engine/PlaybackThread.cpp
  Engine/PlaybackThread+Messages.cpp
  Engine/PlaybackWatch.cpp
  Engine/TransferMeter.cpp
)

# For programs that have the engine in themselves. Linked whole: it names itself from a static initialiser.
add_library(virlo-media-linked-static STATIC Engine/LinkedMediaEngine.cpp)
target_link_libraries(virlo-media-linked-static PUBLIC virlo-media-engine virlo-platform-player)
add_library(virlo-media-linked INTERFACE)
target_link_libraries(virlo-media-linked INTERFACE
  "$<LINK_LIBRARY:WHOLE_ARCHIVE,virlo-media-linked-static>")
