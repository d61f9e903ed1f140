// The stand-in cloud for the demo and the end-to-end tests: starts the
// backend's servers on loopback, prints where each listens, one per line,
// and runs until SIGINT or SIGTERM.
#include <signal.h>
#include <CLI/CLI.hpp>

#include <filesystem>
#include <iostream>

#include "backend/authority/BackendCertificateAuthority.h"
#include "backend/checkin/CheckinServer.h"
#include "backend/news/NewsServer.h"
#include "backend/registration/RegistrationServer.h"
#include "backend/relay/RelayServer.h"
#include "platform/files/FileSystem.h"
#include "platform/log/Log.h"

int main(int argc, char** argv) {
  CLI::App app{"quillet-backend: the stand-in servers Quillet talks to"};
  std::string dataDir;
  std::string host = "127.0.0.1";
  int newsPort = 8088;
  std::string resourcesDir;
  std::string videosDir;
  app.add_option("--data-dir", dataDir, "Directory of the servers' data (default: beside Quillet's data root)");
  app.add_option("--host", host, "Address to listen on")->capture_default_str();
  app.add_option("--news-port", newsPort, "Port of the news API; 0 picks a free one")
      ->capture_default_str()
      ->check(CLI::Range(0, 65535));
  app.add_option("--resources-dir", resourcesDir, "Directory of the seed data (default: the packaged resources)");
  app.add_option("--videos-dir", videosDir, "Directory of the stories' videos (default: the videos the build made)");
  int relayPort = 5228;
  std::string relayDevice;
  std::string relaySecret;
  app.add_option("--relay-port", relayPort, "Port of the relay (messaging) server; 0 picks a free one")
      ->capture_default_str()
      ->check(CLI::Range(0, 65535));
  app.add_option("--relay-device", relayDevice, "Device id the relay server accepts at login");
  app.add_option("--relay-secret", relaySecret, "That device's secret");
  int checkinPort = 5230;
  int registrationPort = 5231;
  app.add_option("--checkin-port", checkinPort, "Port of the check-in service (HTTPS); 0 picks a free one")
      ->capture_default_str()
      ->check(CLI::Range(0, 65535));
  app.add_option("--registration-port", registrationPort,
                 "Port of the token registration service (HTTPS); 0 picks a free one")
      ->capture_default_str()
      ->check(CLI::Range(0, 65535));
  CLI11_PARSE(app, argc, argv);

  quillet::platform::Log::setProcessName("quillet-backend");
  const std::filesystem::path root =
      dataDir.empty() ? quillet::platform::FileSystem::defaultRoot().parent_path() / "quillet-backend"
                      : std::filesystem::path(dataDir);

  // The signals are taken by sigwait below, on this thread; the servers'
  // threads inherit the mask and never see them.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

  quillet::backend::NewsServerOptions newsOptions;
  newsOptions.host = host;
  newsOptions.port = newsPort;
  newsOptions.dataDirectory = root / "news";
  newsOptions.resourceDirectory = resourcesDir;
  newsOptions.videoDirectory = videosDir;
  quillet::backend::NewsServer news(newsOptions);
  quillet::platform::Error error;
  if (!news.start(&error)) {
    std::cerr << "quillet-backend: news server: " << error.localizedDescription() << "\n";
    return 1;
  }
  std::cout << "news " << news.apiUrl() << std::endl;

  // The TLS servers serve with the backend's own authority (made at first
  // start) and share one registry of checked-in devices.
  quillet::backend::BackendCertificateAuthority authority(root / "ca");
  if (!authority.ensure(&error)) {
    std::cerr << "quillet-backend: " << error.localizedDescription() << "\n";
    return 1;
  }
  auto devices = std::make_shared<quillet::backend::CheckinDeviceRegistry>();
  quillet::backend::RelayServerOptions relayOptions;
  relayOptions.host = host;
  relayOptions.port = relayPort;
  relayOptions.certificateFile = authority.certificateFile();
  relayOptions.keyFile = authority.keyFile();
  if (!relayDevice.empty()) relayOptions.credentials[relayDevice] = relaySecret;
  relayOptions.devices = devices;
  relayOptions.heartbeatIntervalSeconds = 60;
  quillet::backend::RelayServer relay(relayOptions);
  if (!relay.start(&error)) {
    std::cerr << "quillet-backend: relay server: " << error.localizedDescription() << "\n";
    return 1;
  }
  std::cout << "relay " << host << ":" << relay.port() << std::endl;
  std::cout << "relay-admin " << relay.adminUrl() << std::endl;

  quillet::backend::CheckinServerOptions checkinOptions;
  checkinOptions.host = host;
  checkinOptions.port = checkinPort;
  checkinOptions.certificateFile = authority.certificateFile();
  checkinOptions.keyFile = authority.keyFile();
  checkinOptions.devices = devices;
  quillet::backend::CheckinServer checkin(checkinOptions);
  if (!checkin.start(&error)) {
    std::cerr << "quillet-backend: checkin server: " << error.localizedDescription() << "\n";
    return 1;
  }
  std::cout << "checkin " << checkin.url() << std::endl;

  quillet::backend::RegistrationServerOptions registrationOptions;
  registrationOptions.host = host;
  registrationOptions.port = registrationPort;
  registrationOptions.certificateFile = authority.certificateFile();
  registrationOptions.keyFile = authority.keyFile();
  registrationOptions.devices = devices;
  quillet::backend::RegistrationServer registration(registrationOptions);
  if (!registration.start(&error)) {
    std::cerr << "quillet-backend: registration server: " << error.localizedDescription() << "\n";
    return 1;
  }
  std::cout << "registration " << registration.url() << std::endl;
  std::cout << "ca " << authority.caFile().string() << std::endl;

  int signalNumber = 0;
  sigwait(&stopSignals, &signalNumber);
  registration.stop();
  checkin.stop();
  relay.stop();
  news.stop();
  std::cout << "stopped" << std::endl;
  return 0;
}
