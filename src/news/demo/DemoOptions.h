#pragma once

#include <atomic>

#include "news/driver/PhoneOptions.h"

namespace quillet::news {

// How the interactive demo runs. Plain data.
struct DemoOptions {
  PhoneOptions phone;   // the phone; its events are always read as JSON
  int columns = 80;     // the width the screen is drawn to
  bool prompt = false;  // print "quillet> " before reading each line (a terminal)
  bool echo = false;    // print each line read after "> " (input that is not a terminal)
  // Raised (by a signal handler) to leave after the command running now.
  // Not owned; outlives the console. Null: never.
  const std::atomic<bool>* stop = nullptr;
};

}  // namespace quillet::news
