# HTTP sessions, URLs and the kernel's network flags.
target_sources(virlo-platform PRIVATE
  CurlSession.cpp
  HandlePool.cpp
  KernelNetworkFlags.cpp
  NetlinkWatch.cpp
  NetworkFlags.cpp
  ResponseHead.cpp
  SocketPoll.cpp
  Transfer.cpp
  TransferLoop.cpp
  TrustedAuthorities.cpp
  URL.cpp
  URLSession.cpp
  WireRequest.cpp
)

# libcurl's own TLS library: the one call that keeps it alive to the process's end.
find_package(OpenSSL 3.0 REQUIRED)
target_link_libraries(virlo-platform PRIVATE OpenSSL::Crypto)
