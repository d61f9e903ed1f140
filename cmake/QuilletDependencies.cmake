# Every library the layers link against, found once for the whole tree.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(OpenSSL 3 REQUIRED)
find_package(CURL REQUIRED)
find_package(ZLIB REQUIRED)
find_package(SQLite3 REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(nlohmann_json REQUIRED)
find_package(CLI11 REQUIRED)
pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0)
# FarmHash's fingerprint, for identifiers that must hash alike everywhere (no pkg-config file).
find_path(FARMHASH_INCLUDE_DIR farmhash.h REQUIRED)
find_library(FARMHASH_LIBRARY farmhash REQUIRED)
add_library(quillet_farmhash INTERFACE)
target_include_directories(quillet_farmhash SYSTEM INTERFACE ${FARMHASH_INCLUDE_DIR})
target_link_libraries(quillet_farmhash INTERFACE ${FARMHASH_LIBRARY})
# Video: containers, decoders and pixel conversion for the platform's media facility.
pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libswscale libavutil)
# Still images: PNG, JPEG, GIF and BMP decoding for the platform's image facility.
pkg_check_modules(STB REQUIRED IMPORTED_TARGET stb)
# Still images out: JPEG encoding (libjpeg) and PNG writing and screen drawing (Cairo).
find_package(JPEG REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo)

# asio is header-only; it is used without boost.
find_path(ASIO_INCLUDE_DIR asio.hpp REQUIRED)
add_library(quillet_asio INTERFACE)
target_include_directories(quillet_asio SYSTEM INTERFACE ${ASIO_INCLUDE_DIR})
# Every unit that includes asio must agree on its handler allocator, whatever
# standard headers it included first.
target_compile_definitions(quillet_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC)

# The HTTP(S) server of the stand-in cloud and of the HTTP client's tests.
pkg_check_modules(HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)

if(QUILLET_TESTS)
  find_package(GTest REQUIRED)
endif()
if(QUILLET_BENCH)
  find_package(benchmark REQUIRED)
endif()

# Wire messages of the relay protocol: protoc at build time, libprotobuf at run time.
find_package(Protobuf REQUIRED)
