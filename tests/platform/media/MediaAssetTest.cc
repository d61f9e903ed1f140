#include "platform/media/MediaAsset.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "platform/media/MediaError.h"
#include "platform/text/PercentEscape.h"
#include "support/TempDir.h"
#include "support/TestPaths.h"

namespace quillet::platform {
namespace {

const std::filesystem::path kVideos = quillet::testing::TestPaths::testVideosDirectory();

void writeFile(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// A loopback port that nothing listens on.
int closedPort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t length = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  close(fd);
  return ntohs(address.sin_port);
}

TEST(MediaAssetTest, VideosArePlayableWithTheirDurationByPathAndByEscapedFileUrl) {
  for (const char* name : {"colours.mp4", "tone.mp4", "halves.mp4"}) {
    auto asset = MediaAsset::assetWithURL((kVideos / name).string());
    EXPECT_TRUE(asset->isPlayable()) << name;
    EXPECT_NEAR(asset->duration(), std::string(name) == "halves.mp4" ? 1.0 : 2.0, 0.05) << name;
    EXPECT_FALSE(asset->lastError()) << name;
  }
  testing::TempDir dir;
  const std::filesystem::path spaced = dir.path() / "a clip #1.mp4";
  std::filesystem::copy_file(kVideos / "colours.mp4", spaced);
  auto asset = MediaAsset::assetWithURL("file://" + PercentEscape::escape(spaced.string(), "/-._~"));
  EXPECT_TRUE(asset->isPlayable()) << asset->url();
}

TEST(MediaAssetTest, WhatIsNotATimedMediumIsNotPlayableAndSaysWhy) {
  testing::TempDir dir;
  std::mt19937 random(7);
  std::string noise(8192, '\0');
  for (char& c : noise) c = static_cast<char>(random());
  writeFile(dir.path() / "noise.mp4", noise);
  // A 1x1 picture: a still image is not a medium that plays.
  const unsigned char png[] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48,
                               0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00,
                               0x00, 0x1F, 0x15, 0xC4, 0x89, 0x00, 0x00, 0x00, 0x0A, 0x49, 0x44, 0x41, 0x54, 0x78,
                               0x9C, 0x63, 0x00, 0x01, 0x00, 0x00, 0x05, 0x00, 0x01, 0x0D, 0x0A, 0x2D, 0xB4, 0x00,
                               0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
  writeFile(dir.path() / "dot.png", std::string(reinterpret_cast<const char*>(png), sizeof png));
  writeFile(dir.path() / "empty.mp4", "");

  const std::string http = "http://127.0.0.1:" + std::to_string(closedPort()) + "/newsapp/videos/6.mp4";
  for (const std::string& url :
       {(dir.path() / "noise.mp4").string(), (dir.path() / "dot.png").string(), (dir.path() / "empty.mp4").string(),
        (dir.path() / "missing.mp4").string(), http, std::string("file://nohost")}) {
    auto asset = MediaAsset::assetWithURL(url);
    EXPECT_FALSE(asset->isPlayable()) << url;
    EXPECT_EQ(asset->duration(), 0.0) << url;
    auto error = asset->lastError();
    ASSERT_TRUE(error) << url;
    EXPECT_EQ(error->domain, kMediaErrorDomain);
    EXPECT_TRUE(error->code == kMediaErrorCannotOpen || error->code == kMediaErrorNotPlayable) << url;
    EXPECT_NE(error->localizedDescription().find(url.substr(0, 12)), std::string::npos) << error->description();
  }
}

}  // namespace
}  // namespace quillet::platform
