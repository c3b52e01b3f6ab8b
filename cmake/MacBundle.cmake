# Drabwise.app: the Mac entry over the Mac adapters and the Qt shell, with its
# Info.plist. scripts/package-mac deploys the Qt frameworks into it, signs it
# with drabwise/mac/Drabwise.entitlements and zips it.
find_package(Qt6 6.2 REQUIRED COMPONENTS Widgets)

set(DRABWISE_VERSION "1.0.0" CACHE STRING "The version the bundle shows (CFBundleShortVersionString)")
set(DRABWISE_BUILD_NUMBER "1" CACHE STRING "The bundle's build number (CFBundleVersion)")
set(DRABWISE_FEED_URL "" CACHE STRING "The address of the update feed (SUFeedURL)")
set(DRABWISE_FEED_KEY "" CACHE STRING "The public key that signs updates (SUPublicEDKey)")
configure_file(${PROJECT_SOURCE_DIR}/drabwise/mac/Info.plist.in ${CMAKE_CURRENT_BINARY_DIR}/Info.plist @ONLY)

add_executable(DrabwiseMac MACOSX_BUNDLE ${PROJECT_SOURCE_DIR}/drabwise/MainMacOS.mm)
set_target_properties(DrabwiseMac PROPERTIES
  OUTPUT_NAME Drabwise
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
target_link_libraries(DrabwiseMac PRIVATE Ashview PlatformMac Qt6::Widgets)
if(TARGET AshviewQt)
  target_link_libraries(DrabwiseMac PRIVATE AshviewQt)
endif()
# Frameworks copied into the bundle (Qt's, Sparkle) are found here.
target_link_options(DrabwiseMac PRIVATE "LINKER:-rpath,@executable_path/../Frameworks")
