#include "http/serialization/NKTextDecoding.h"

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <memory>

namespace quillet::http {
namespace {

struct ConverterCloser {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, ConverterCloser>;

Converter openConverter(std::string_view name) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(std::string(name).c_str(), &status));
  if (U_FAILURE(status)) return nullptr;
  return converter;
}

}  // namespace

bool NKTextDecoding::isKnownEncoding(std::string_view name) { return !name.empty() && openConverter(name) != nullptr; }

NKTextDecoding::Result NKTextDecoding::decode(const std::vector<uint8_t>& bytes, std::string_view encoding) {
  Result result;
  Converter converter = openConverter(encoding);
  if (!converter) return result;
  // Stop at the first sequence that is not valid in the set, instead of substituting.
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
  if (U_FAILURE(status)) return result;

  std::u16string text(bytes.size() * 2 + 1, u'\0');
  const auto* source = reinterpret_cast<const char*>(bytes.data());
  int32_t length =
      ucnv_toUChars(converter.get(), reinterpret_cast<UChar*>(text.data()), static_cast<int32_t>(text.size()), source,
                    static_cast<int32_t>(bytes.size()), &status);
  if (U_FAILURE(status)) return result;
  text.resize(static_cast<size_t>(length));
  result.text = text;

  int32_t needed = 0;
  status = U_ZERO_ERROR;
  u_strToUTF8(nullptr, 0, &needed, reinterpret_cast<const UChar*>(text.data()), length, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) {
    result.outcome = Outcome::NotUTF8;
    return result;
  }
  result.utf8.resize(static_cast<size_t>(needed));
  status = U_ZERO_ERROR;
  u_strToUTF8(result.utf8.data(), needed, nullptr, reinterpret_cast<const UChar*>(text.data()), length, &status);
  if (U_FAILURE(status) && status != U_STRING_NOT_TERMINATED_WARNING) {
    result.outcome = Outcome::NotUTF8;
    return result;
  }
  result.outcome = Outcome::Decoded;
  return result;
}

std::string NKTextDecoding::describe(const std::u16string& text) {
  std::string out;
  icu::UnicodeString(reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size())).toUTF8String(out);
  return out;
}

}  // namespace quillet::http
