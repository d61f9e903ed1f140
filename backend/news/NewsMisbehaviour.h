#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::backend {

// How the news server misbehaves for an API method, so that tests can see
// what the client does with a bad reply.
struct NewsFault {
  enum class Kind {
    None,         // a normal reply (after the delay, if any)
    StatusFalse,  // the normal body with "status" false
    HtmlBody,     // HTTP 200 with an HTML page instead of JSON
    NotFound,     // HTTP 404
    Drop,         // the connection is closed without any reply
  };
  Kind kind = Kind::None;
  int delayMilliseconds = 0;  // waited before the reply (or the drop)

  // "none", "status_false", "html", "not_found", "drop"; nullopt for another text.
  static std::optional<Kind> kindNamed(std::string_view name);
  bool isNormal() const { return kind == Kind::None && delayMilliseconds <= 0; }
};

// The fault table: one fault for all methods and one per method; a method's
// own fault wins over the one for all. Thread-safe.
class NewsMisbehaviour {
 public:
  // `method` empty means every API method.
  void setFault(const std::string& method, NewsFault fault);
  void clear();
  NewsFault faultFor(const std::string& method) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, NewsFault> faults_;  // "" is the fault for all
};

}  // namespace quillet::backend
