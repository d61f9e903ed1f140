#include "news/demo/DemoConsole.h"

#include "news/app/AppKeys.h"
#include "news/app/SplashVC.h"
#include "news/demo/DemoKeys.h"
#include "news/demo/DemoRenderer.h"
#include "news/demo/WordWrap.h"
#include "news/driver/CardState.h"
#include "platform/runloop/RunLoop.h"
#include "platform/ui/UiDriver.h"
#include "platform/ui/Window.h"
#include "platform/value/Format.h"
#include "platform/value/Json.h"

namespace quillet::news {

using platform::Value;

namespace {

PhoneOptions jsonPhone(PhoneOptions phone) {
  phone.json = true;
  return phone;
}

}  // namespace

DemoConsole::DemoConsole(DemoOptions options, std::ostream& out)
    : options_(std::move(options)),
      out_(out),
      sink_([this](const std::string& line) { tell(line); }),
      events_(&sink_),
      session_(std::make_unique<PhoneSession>(jsonPhone(options_.phone), events_)) {}

DemoConsole::~DemoConsole() {
  session_.reset();
  sink_.flushPending();
  platform::RunLoop::setMain(nullptr);
}

void DemoConsole::tell(const std::string& eventLine) {
  platform::Error error;
  const Value event = platform::jsonDecode(eventLine, &error);
  if (!event.isDictionary()) {
    // Not an event: say it as it came rather than lose it.
    out_ << eventLine << std::endl;
    return;
  }
  if (event["event"] == Value("terminated")) terminated_ = true;
  const std::string line = DemoRenderer::event(event);
  if (!line.empty()) out_ << line << std::endl;
}

bool DemoConsole::runCommand(const std::string& command) {
  if (!session_->execute(command)) return false;
  return session_->execute("settle") && !terminated_;
}

bool DemoConsole::stopRequested() const { return options_.stop != nullptr && options_.stop->load(); }

bool DemoConsole::start() {
  out_ << "Quillet is starting..." << std::endl;
  if (!runCommand("launch")) return false;
  auto top = session_->application().window().topScreen();
  if (top && top->identifier() == kSplashScreen && !stopRequested()) {
    if (!runCommand(platform::format("wait %g", SplashVC::kSplashSeconds))) return false;
  }
  draw();
  return true;
}

void DemoConsole::draw() {
  platform::Application& application = session_->application();
  const Value snapshot = platform::UiDriver(application).snapshot();
  const Value feed = CardState::feed(application);
  out_ << "\n" << DemoRenderer::screen(snapshot, feed, options_.columns);
  for (const std::string& line : WordWrap::lines(DemoKeys::helpLine(), options_.columns)) out_ << line << "\n";
  out_ << std::flush;
}

bool DemoConsole::handle(const std::string& line) {
  platform::Application& application = session_->application();
  auto top = application.window().topScreen();
  const DemoKeys::Step step =
      DemoKeys::translate(line, top ? top->identifier() : std::string(), CardState::feed(application));
  switch (step.action) {
    case DemoKeys::Action::Quit:
      return false;
    case DemoKeys::Action::Help:
      out_ << DemoKeys::helpText() << std::flush;
      return true;
    case DemoKeys::Action::Say:
      out_ << step.command << std::endl;
      return true;
    case DemoKeys::Action::Run:
      break;
  }
  if (!step.command.empty() && !runCommand(step.command)) return false;
  if (!stopRequested()) draw();
  return true;
}

int DemoConsole::run(std::istream& in) {
  if (start()) {
    std::string line;
    while (!stopRequested()) {
      if (options_.prompt) out_ << "quillet> " << std::flush;
      if (!std::getline(in, line)) break;
      if (options_.echo) out_ << "> " << line << std::endl;
      if (!handle(line)) break;
    }
  }
  return terminated_ ? 1 : 0;
}

}  // namespace quillet::news
