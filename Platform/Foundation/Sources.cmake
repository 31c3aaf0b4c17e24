target_sources(virlo-platform PRIVATE
  AdvertisingIdentifier.cpp
  BinaryPlistCheck.cpp
  BuiltInMainLoop.cpp
  Bundle.cpp
  Clock.cpp
  DateFormatter.cpp
  DetachedThread.cpp
  DeviceInfo.cpp
  DiskFileSystem.cpp
  DispatchGroup.cpp
  Error.cpp
  Exception.cpp
  FileSystem.cpp
  Folders.cpp
  GlobalQueue.cpp
  Guarded.cpp
  HostTimeZone.cpp
  JSONReading.cpp
  JSONSerialization.cpp
  KeyedArchive.cpp
  LeadingNumber.cpp
  MainLoop.cpp
  NotificationCenter.cpp
  OperationQueue.cpp
  PlainDatePattern.cpp
  PlistNode.cpp
  PropertyList.cpp
  SerialQueue.cpp
  SingleByteEncoding.cpp
  StringFormat.cpp
  SystemClock.cpp
  SystemLog.cpp
  Timer.cpp
  UUID.cpp
  WorkerPool.cpp
  XMLAttributeStore.cpp
  XMLReader.cpp
)
# By themselves in any build: a program that uses none of these does not load the libraries below them.
set_source_files_properties(
  BinaryPlistCheck.cpp DateFormatter.cpp KeyedArchive.cpp PlistNode.cpp PropertyList.cpp
  PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
