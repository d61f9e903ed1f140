#include "news/driver/PhoneSession.h"

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <thread>
#include <utility>

#include "instanceid/support/InstanceIDEnvironment.h"
#include "instanceid/support/InstanceIDLogger.h"
#include "news/app/AppKeys.h"
#include "news/app/MainStoryboard.h"
#include "news/driver/CardState.h"
#include "news/driver/PageGestures.h"
#include "news/driver/PageState.h"
#include "news/driver/ReaderGestures.h"
#include "news/driver/StoreDump.h"
#include "news/services/InstanceIDBridge.h"
#include "news/store/NewsDatabaseFile.h"
#include "news/support/ToastView.h"
#include "platform/device/AppBundle.h"
#include "platform/device/DeviceInfo.h"
#include "platform/log/Log.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/reachability/ReachabilitySource.h"
#include "platform/render/ScreenRenderer.h"
#include "platform/support/Text.h"
#include "platform/text/DeviceLocale.h"
#include "platform/ui/Device.h"
#include "platform/ui/MailComposeViewController.h"
#include "platform/ui/Screen.h"
#include "platform/ui/UiDriver.h"
#include "platform/value/Json.h"

namespace quillet::news {

using platform::trim;
using platform::Value;

namespace {

std::optional<platform::ReachabilityOverride> networkMode(const std::string& mode) {
  if (mode == "auto") return platform::ReachabilityOverride::Automatic;
  if (mode == "wifi") return platform::ReachabilityOverride::WiFi;
  if (mode == "cellular") return platform::ReachabilityOverride::Cellular;
  if (mode == "none") return platform::ReachabilityOverride::None;
  return std::nullopt;
}

// Hex digits (spaces and angle brackets allowed between them) as bytes.
std::optional<Value::Bytes> hexBytes(const std::string& text) {
  std::string digits;
  for (char c : text) {
    if (c == ' ' || c == '<' || c == '>') continue;
    if (!std::isxdigit(static_cast<unsigned char>(c))) return std::nullopt;
    digits.push_back(c);
  }
  if (digits.empty() || digits.size() % 2 != 0) return std::nullopt;
  Value::Bytes bytes;
  for (size_t i = 0; i < digits.size(); i += 2) {
    bytes.push_back(static_cast<uint8_t>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

}  // namespace

PhoneSession::PhoneSession(PhoneOptions options, std::ostream& out)
    : options_(std::move(options)), printer_(out, options_.json) {
  fileSystem_ =
      std::make_shared<platform::FileSystem>(platform::FileSystem::defaultRoot(options_.dataDirectory.string()),
                                             platform::FileSystem::Options{NewsDatabaseFile::builtResourceDirectory()});
  platform::FileSystem::setStandard(fileSystem_);
  defaults_ = std::make_unique<platform::UserDefaults>(*fileSystem_, platform::UserDefaults::standardDomain);

  keychain_ = std::make_unique<platform::Keychain>(*fileSystem_);

  std::shared_ptr<platform::Clock> clock = platform::Clock::system();
  if (options_.virtualClock) {
    clock = options_.startWallSeconds > 0 ? std::make_shared<platform::ManualClock>(options_.startWallSeconds)
                                          : std::make_shared<platform::ManualClock>();
  }
  loop_ = std::make_shared<platform::RunLoop>(clock);
  platform::RunLoop::setMain(loop_);
  if (options_.virtualClock) {
    startSeconds_ = clock->monotonicSeconds();
    printer_.setTimeSource([this] { return loop_->clock()->monotonicSeconds() - startSeconds_; });
  }
  platform::Screen::main() = platform::Screen{options_.screenWidth, options_.screenHeight, options_.screenScale};
  ToastView::dropQueue();
  describeAppAndDevice();

  if (options_.log && !options_.logLevel.empty()) {
    using instanceid::InstanceIDLogLevel;
    const InstanceIDLogLevel level = options_.logLevel == "debug"  ? InstanceIDLogLevel::Debug
                                     : options_.logLevel == "info" ? InstanceIDLogLevel::Info
                                                                   : InstanceIDLogLevel::Error;
    instanceid::InstanceIDLogger::shared().setShownLevel(level);
  }
  if (options_.log) {
    logSink_ = platform::Log::addSink([this](const platform::LogRecord& record) {
      std::lock_guard lock(logMutex_);
      logLines_.push_back(record.message);
    });
  }

  auto events = std::make_shared<platform::UiEvents>();
  uiToken_ = events->subscribe([this](const platform::UiEvent& event) {
    drainLogs();
    printer_.print(event);
  });
  application_ = std::make_shared<platform::Application>(events);
  platform::Application::setSharedApplication(application_);

  appDelegate_ = std::make_shared<AppDelegate>(
      makeServices(clock), fileSystem_, *defaults_, platform::NotificationCenter::defaultCenter(),
      MainStoryboard::make(AppEnvironment{defaults_.get(), loop_.get(), fileSystem_}));
  application_->setDelegate(appDelegate_);
  Webmanager::sharedObject().setAPIBase(options_.apiBase);
  setNetwork(options_.network, false);
}

PhoneSession::~PhoneSession() {
  application_->events()->unsubscribe(uiToken_);
  // The screens and the delegate refer to this session's defaults store; let them go with it.
  application_->window().setRootViewController(nullptr);
  application_->setDelegate(nullptr);
  ToastView::dropQueue();
  if (logSink_ >= 0) platform::Log::removeSink(logSink_);
  instanceid::InstanceIDLogger::shared().setShownLevel(std::nullopt);
  platform::ReachabilitySource::setOverride(platform::ReachabilityOverride::Automatic);
  platform::MailComposeViewController::setCanSendMail(false);
  platform::Device::current() = platform::Device{};
  platform::AppBundle::setMain({});
  platform::DeviceInfo::setCurrent({});
  platform::DeviceLocale::setTimeZoneId(std::nullopt);
  platform::DeviceLocale::setPreferredLanguages(std::nullopt);
}

// In the foreground but not active (a call or the notification centre over the app).
void PhoneSession::becomeInactive() {
  switch (application_->applicationState()) {
    case platform::ApplicationState::Active:
      application_->resignActive();
      break;
    case platform::ApplicationState::Background:
      application_->enterForeground();
      break;
    case platform::ApplicationState::Inactive:
    case platform::ApplicationState::Terminated:
      break;
  }
}

void PhoneSession::describeAppAndDevice() {
  platform::AppBundle bundle;
  bundle.bundleIdentifier = kBundleIdentifier;
  bundle.shortVersionString = options_.appVersion;
  bundle.bundleVersion = options_.buildVersion;
  platform::AppBundle::setMain(bundle);
  platform::DeviceInfo device;
  device.systemVersion = options_.osVersion;
  device.arguments = options_.appArguments;
  platform::DeviceInfo::setCurrent(device);
  if (!options_.timeZone.empty()) platform::DeviceLocale::setTimeZoneId(options_.timeZone);
  if (!options_.languages.empty()) platform::DeviceLocale::setPreferredLanguages(options_.languages);
}

AppServices PhoneSession::makeServices(const std::shared_ptr<platform::Clock>& clock) {
  const platform::AppBundle bundle = platform::AppBundle::main();
  auto environment = std::make_shared<instanceid::InstanceIDEnvironment>();
  environment->fileSystem = fileSystem_;
  environment->keychain = keychain_.get();
  environment->defaults = defaults_.get();
  environment->clock = clock;
  environment->checkinURL = options_.checkinURL;
  environment->registrationURL = options_.registrationURL;
  environment->sessionOptions.caFile = options_.caFile;
  environment->sessionOptions.clock = clock;
  environment->bundleIdentifier = bundle.bundleIdentifier;
  environment->appVersion = bundle.shortVersionString;
  environment->systemVersion = platform::DeviceInfo::current().systemVersion;
  instanceid::InstanceIDEnvironment::setStandard(environment);

  AppServices services = AppServices::shared();
  services.instanceID = std::make_shared<InstanceIDBridge>(std::make_shared<instanceid::InstanceID>(environment));
  if (!options_.msgSenderID.empty()) {
    services.context = std::make_shared<FixedServiceContext>(ServiceConfiguration{options_.msgSenderID});
  }
  return services;
}

int PhoneSession::run(std::istream& in) {
  std::string line;
  while (std::getline(in, line)) {
    if (!execute(line)) break;
  }
  return terminated_ ? 1 : 0;
}

bool PhoneSession::execute(const std::string& line) {
  const std::string text = trim(line);
  if (text.empty() || text[0] == '#') return true;
  const size_t space = text.find_first_of(" \t");
  const std::string command = text.substr(0, space);
  std::string argument = space == std::string::npos ? "" : trim(text.substr(space));
  // `type` takes its text exactly as written: only the line's end and the
  // blanks before the field's name go.
  if (command == "type" && space != std::string::npos) {
    std::string raw = line.substr(line.find(command) + command.size());
    while (!raw.empty() && (raw.back() == '\n' || raw.back() == '\r')) raw.pop_back();
    argument = raw.substr(std::min(raw.size(), raw.find_first_not_of(" \t")));
  }
  try {
    const bool goOn = dispatch(command, argument);
    loop_->runPending();
    drainLogs();
    return goOn;
  } catch (const std::out_of_range& fault) {
    // The app reads a list out of range with no guard: the program ends here.
    drainLogs();
    terminated_ = true;
    printer_.print("terminated", Value::dictionary({{"reason", Value(fault.what())}}));
    return false;
  }
}

bool PhoneSession::dispatch(const std::string& command, const std::string& argument) {
  if (command == "quit") {
    printer_.print("quit");
    return false;
  }
  if (command == "launch") {
    launch(argument);
  } else if (command == "active") {
    if (application_->applicationState() == platform::ApplicationState::Background) application_->enterForeground();
    application_->becomeActive();
  } else if (command == "background") {
    application_->enterBackground();
  } else if (command == "inactive") {
    becomeInactive();
  } else if (command == "background-expire") {
    application_->expireBackgroundTasks();
  } else if (command == "terminate") {
    application_->terminate();
    loop_->runPending();
    printer_.print("applicationTerminated");
    return false;
  } else if (command == "wait") {
    wait(argument);
  } else if (command == "settle") {
    settle();
  } else if (command == "screen") {
    printScreen();
  } else if (command == "network") {
    setNetwork(argument, true);
  } else if (command == "device-token") {
    deviceToken(argument);
  } else if (command == "push") {
    push(argument, true);
  } else if (command == "push-plain") {
    push(argument, false);
  } else if (command == "request") {
    request(argument);
  } else if (command == "defaults") {
    printer_.print("defaults", Value::dictionary({{"values", Value(defaults_->dictionaryRepresentation())}}));
  } else if (command == "tap" || command == "alert-tap") {
    platform::Error failure;
    platform::UiDriver hand(*application_);
    const bool done = command == "tap" ? hand.tap(argument, &failure) : hand.tapAlertAction(argument, &failure);
    if (!done) error(command + " " + argument + ": " + failure.localizedDescription());
  } else if (command == "swipe" || command == "select" || command == "check" || command == "switch" ||
             command == "scroll") {
    gesture(command, argument);
  } else if (command == "store-dump") {
    std::string problem;
    Value tables = dumpNewsStore(NewsDatabaseFile(fileSystem_).getDBPath(), &problem);
    if (tables.isNil()) {
      error("store-dump: " + problem);
    } else {
      printer_.print("storeDump", Value::dictionary({{"tables", tables}}));
    }
  } else if (command == "memory-warning") {
    application_->receiveMemoryWarning();
  } else if (!pageCommand(command, argument)) {
    error("unknown command: " + command);
  }
  return true;
}

bool PhoneSession::pageCommand(const std::string& command, const std::string& argument) {
  PageGestures hand(*application_);
  platform::Error failure;
  bool done = true;
  if (command == "type") {
    done = hand.type(argument, &failure);
  } else if (command == "return") {
    done = hand.pressReturn(argument, &failure);
  } else if (command == "begin-edit" || command == "end-edit") {
    done = hand.edit(argument, command == "begin-edit", &failure);
  } else if (command == "share") {
    done = hand.share(argument, &failure);
  } else if (command == "page-event") {
    done = hand.pageEvent(argument, &failure);
  } else if (command == "close-sheet") {
    done = hand.closeSheet(&failure);
  } else if (command == "mail-finish") {
    done = hand.finishMail(argument, &failure);
  } else if (command == "screenshot") {
    if (argument.empty()) {
      error("screenshot: needs a file");
      return true;
    }
    done = platform::ScreenRenderer::writeScreenshot(*application_, argument, &failure);
    if (done) printer_.print("screenshot", Value::dictionary({{"file", Value(argument)}}));
  } else if (command == "installed-apps") {
    installedApps(argument);
  } else if (command == "mail-account" || command == "device") {
    deviceSetting(command, argument);
  } else {
    return false;
  }
  if (!done) error(command + (argument.empty() ? "" : " " + argument) + ": " + failure.localizedDescription());
  return true;
}

void PhoneSession::installedApps(const std::string& argument) {
  std::set<std::string> schemes;
  size_t begin = 0;
  while (begin <= argument.size()) {
    size_t comma = argument.find(',', begin);
    if (comma == std::string::npos) comma = argument.size();
    const std::string scheme = trim(argument.substr(begin, comma - begin));
    if (!scheme.empty() && scheme != "none") schemes.insert(scheme);
    begin = comma + 1;
  }
  application_->setInstalledSchemes(schemes);
  Value list = Value::array({});
  for (const auto& scheme : schemes) list.append(Value(scheme));
  printer_.print("installedApps", Value::dictionary({{"schemes", std::move(list)}}));
}

void PhoneSession::deviceSetting(const std::string& command, const std::string& argument) {
  if (command == "mail-account") {
    if (argument != "on" && argument != "off") return error("mail-account: on or off");
    platform::MailComposeViewController::setCanSendMail(argument == "on");
  } else {
    if (argument != "phone" && argument != "pad") return error("device: phone or pad");
    platform::Device::current().userInterfaceIdiom =
        argument == "pad" ? platform::UserInterfaceIdiom::Pad : platform::UserInterfaceIdiom::Phone;
  }
}

void PhoneSession::gesture(const std::string& command, const std::string& argument) {
  ReaderGestures hand(*application_);
  platform::Error failure;
  bool done = false;
  if (command == "swipe") done = hand.swipe(argument, &failure);
  if (command == "select") done = hand.select(argument, &failure);
  if (command == "check") done = hand.check(argument, &failure);
  if (command == "switch") done = hand.setSwitch(argument, &failure);
  if (command == "scroll") done = hand.scroll(argument, &failure);
  if (!done) error(command + " " + argument + ": " + failure.localizedDescription());
}

void PhoneSession::printScreen() {
  Value fields = Value::dictionary({{"snapshot", platform::UiDriver(*application_).snapshot()}});
  Value feed = CardState::feed(*application_);
  if (!feed.isNil()) fields.set("feed", feed);
  Value page = PageState::of(*application_);
  if (!page.isNil()) fields.set("page", page);
  Value toast = CardState::toast();
  if (!toast.isNil()) fields.set("toast", toast);
  printer_.print("screen", std::move(fields));
}

void PhoneSession::error(const std::string& message) {
  printer_.print("error", Value::dictionary({{"message", message}}));
}

void PhoneSession::launch(const std::string& argument) {
  if (launched_) return error("launch: the app is already running");
  Value options;
  if (!argument.empty()) {
    Value push = platform::jsonDecode(argument);
    if (!push.isDictionary()) return error("launch: the push must be a JSON object");
    options = Value::dictionary({{kLaunchOptionsRemoteNotificationKey, push}});
  }
  launched_ = true;
  application_->launch(options);
  application_->becomeActive();
}

void PhoneSession::wait(const std::string& argument) {
  char* end = nullptr;
  const double seconds = std::strtod(argument.c_str(), &end);
  if (argument.empty() || end == nullptr || *end != '\0' || !(seconds >= 0)) {
    return error("wait: needs a number of seconds");
  }
  if (options_.virtualClock) {
    settle();
    loop_->advance(seconds);
  } else {
    loop_->runFor(seconds);
  }
}

void PhoneSession::settle() {
  const auto& realClock = platform::Clock::system();
  double quietSince = realClock->monotonicSeconds();
  const double deadline = quietSince + kSettleLimitSeconds;
  for (;;) {
    const size_t ran = loop_->runPending();
    drainLogs();
    const double now = realClock->monotonicSeconds();
    if (ran > 0) {
      quietSince = now;
    } else if (now - quietSince >= kQuietSeconds || now >= deadline) {
      return;
    }
    // Replies come from the network thread as posted work; look again shortly.
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void PhoneSession::setNetwork(const std::string& mode, bool announce) {
  auto parsed = networkMode(mode);
  if (!parsed) return error("network: one of wifi, cellular, none, auto");
  platform::ReachabilitySource::setOverride(*parsed);
  if (announce) printer_.print("network", Value::dictionary({{"mode", mode}}));
}

void PhoneSession::deviceToken(const std::string& argument) {
  auto bytes = hexBytes(argument);
  if (!bytes) return error("device-token: needs an even number of hex digits");
  application_->deliverDeviceToken(Value::bytes(std::move(*bytes)));
}

void PhoneSession::push(const std::string& argument, bool fetchForm) {
  Value payload = platform::jsonDecode(argument);
  if (!payload.isDictionary()) return error("push: the payload must be a JSON object");
  application_->deliverRemoteNotification(payload, fetchForm);
}

// Sends one news API request through Webmanager, as a screen would, with a
// delegate that prints the callback it gets.
void PhoneSession::request(const std::string& argument) {
  const size_t space = argument.find_first_of(" \t");
  const std::string method = argument.substr(0, space);
  const std::string text = space == std::string::npos ? "" : trim(argument.substr(space));
  if (method.empty()) return error("request: needs an API method name");
  Value parameters;
  if (!text.empty()) {
    parameters = platform::jsonDecode(text);
    if (!parameters.isDictionary()) return error("request: the parameters must be a JSON object");
  }
  auto delegate = std::make_shared<WebmanagerDelegate>();
  for (const char* outcome : {"requestSucceeded", "requestFailed"}) {
    delegate->setOperation(outcome, [this, method, outcome](const Value& reply) {
      printer_.print(outcome, Value::dictionary({{"method", method}, {"reply", reply}}));
    });
  }
  Webmanager::sharedObject().sendRequestWithUrl(method, parameters, delegate, "requestSucceeded", "requestFailed");
}

void PhoneSession::drainLogs() {
  std::deque<std::string> lines;
  {
    std::lock_guard lock(logMutex_);
    lines.swap(logLines_);
  }
  for (auto& line : lines) printer_.print("log", Value::dictionary({{"message", std::move(line)}}));
}

}  // namespace quillet::news
