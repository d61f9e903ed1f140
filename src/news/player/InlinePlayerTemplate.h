#pragma once

#include <filesystem>
#include <string>

#include "platform/value/Error.h"

namespace quillet::news {

// The player's page template "InlinePlayerView-iframe-player.html": read
// from the app's resources and filled with the parameters' JSON. The
// template holds exactly one "%@" (inside the script element whose id is
// kParamsElementId, where the JSON lands) and writes every other percent
// sign doubled. Pure functions of their inputs.
class InlinePlayerTemplate {
 public:
  static constexpr const char* kName = "InlinePlayerView-iframe-player";
  static constexpr const char* kType = "html";
  // The id of the script element that carries the parameters' JSON.
  static constexpr const char* kParamsElementId = "inlineplayer-params";

  // Reads the template as UTF-8 from "<resources>/Assets/", else from
  // "<resources>/Assets.bundle/Assets/". False with a file error when neither
  // holds a readable UTF-8 file.
  static bool read(const std::filesystem::path& resourceDirectory, std::string* text, platform::Error* error);

  // Formats `json` into the template. A template whose percent signs are not
  // all "%%" but its one "%@" would misplace or drop the JSON: it is refused
  // with a formatting error and `page` is left alone.
  static bool render(const std::string& templateText, const std::string& json, std::string* page,
                     platform::Error* error);

  // The JSON text that a rendered page carries, or "" when it has none.
  static std::string paramsJSONInPage(const std::string& page);
};

}  // namespace quillet::news
