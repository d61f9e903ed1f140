#include "platform/value/Format.h"

#include <cstdio>
#include <cstdlib>

namespace quillet::platform {
namespace {

// Widths and precisions beyond this are taken for a bad conversion.
constexpr long kMaxField = 1 << 20;

// One conversion after its '%', as read from the format.
struct Conversion {
  std::string flags;
  long width = -1;      // -1: none
  long precision = -1;  // -1: none
  bool widthFromArgs = false;
  bool precisionFromArgs = false;
  std::string_view length;  // h, hh, l, ll, q, L, z, j, t (static text)
  char conversion = 0;
  size_t end = 0;  // index just past the conversion character
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Reads digits at `i`; false when they make a number beyond kMaxField.
bool readNumber(std::string_view fmt, size_t& i, long& out) {
  out = 0;
  while (i < fmt.size() && isDigit(fmt[i])) {
    out = out * 10 + (fmt[i++] - '0');
    if (out > kMaxField) return false;
  }
  return true;
}

// Parses the conversion whose '%' is at `start`; false when it is not a
// well-formed one.
bool parseConversion(std::string_view fmt, size_t start, Conversion& c) {
  size_t i = start + 1;
  while (i < fmt.size() && std::string_view("-+ #0'").find(fmt[i]) != std::string_view::npos) c.flags += fmt[i++];
  if (i < fmt.size() && fmt[i] == '*') {
    c.widthFromArgs = true;
    ++i;
  } else if (i < fmt.size() && isDigit(fmt[i])) {
    if (!readNumber(fmt, i, c.width)) return false;
  }
  if (i < fmt.size() && fmt[i] == '.') {
    ++i;
    if (i < fmt.size() && fmt[i] == '*') {
      c.precisionFromArgs = true;
      ++i;
    } else if (!readNumber(fmt, i, c.precision)) {
      return false;
    }
  }
  for (std::string_view length : {"hh", "ll", "h", "l", "q", "L", "z", "j", "t"}) {
    if (fmt.substr(i, length.size()) == length) {
      c.length = length;
      i += length.size();
      break;
    }
  }
  if (i >= fmt.size()) return false;
  c.conversion = fmt[i];
  c.end = i + 1;
  return std::string_view("@sdiuoxXcfFeEgGaA%").find(c.conversion) != std::string_view::npos;
}

// Next argument, nil when they have run out.
class Arguments {
 public:
  explicit Arguments(std::span<const Value> args) : args_(args) {}
  const Value& next() {
    static const Value nil;
    return next_ < args_.size() ? args_[next_++] : nil;
  }

 private:
  std::span<const Value> args_;
  size_t next_ = 0;
};

// "%" + flags + width + precision, ready for a length and a conversion.
std::string cSpec(const Conversion& c) {
  std::string printfFormat = "%" + c.flags;
  if (c.width >= 0) printfFormat += std::to_string(c.width);
  if (c.precision >= 0) {
    printfFormat += '.';
    printfFormat += std::to_string(c.precision);
  }
  return printfFormat;
}

template <typename T>
void appendPrinted(std::string& out, const std::string& printfFormat, T value) {
  char small[128];
  int n = std::snprintf(small, sizeof small, printfFormat.c_str(), value);
  if (n < 0) return;
  if (static_cast<size_t>(n) < sizeof small) {
    out.append(small, static_cast<size_t>(n));
    return;
  }
  std::string big(static_cast<size_t>(n) + 1, '\0');
  std::snprintf(big.data(), big.size(), printfFormat.c_str(), value);
  out.append(big.data(), static_cast<size_t>(n));
}

long long signedOfLength(int64_t v, std::string_view length) {
  if (length == "hh") return static_cast<signed char>(v);
  if (length == "h") return static_cast<short>(v);
  if (length.empty()) return static_cast<int>(v);
  return v;
}

unsigned long long unsignedOfLength(int64_t v, std::string_view length) {
  auto u = static_cast<uint64_t>(v);
  if (length == "hh") return static_cast<unsigned char>(u);
  if (length == "h") return static_cast<unsigned short>(u);
  if (length.empty()) return static_cast<unsigned>(u);
  return u;
}

void appendConversion(std::string& out, Conversion c, Arguments& args) {
  if (c.widthFromArgs) {
    int64_t w = args.next().integerValue();
    if (w < 0) {
      c.flags += '-';
      w = -w;
    }
    c.width = w > kMaxField ? kMaxField : static_cast<long>(w);
  }
  if (c.precisionFromArgs) {
    int64_t p = args.next().integerValue();
    c.precision = p < 0 ? -1 : p > kMaxField ? kMaxField : static_cast<long>(p);
  }
  std::string printfFormat = cSpec(c);
  switch (c.conversion) {
    case '%':
      out += '%';
      return;
    case '@':
    case 's': {
      const Value& v = args.next();
      appendPrinted(out, printfFormat + "s", (v.isString() ? v.string() : v.description()).c_str());
      return;
    }
    case 'c': {
      const Value& v = args.next();
      int ch = v.isString() ? (v.string().empty() ? 0 : static_cast<unsigned char>(v.string()[0]))
                            : static_cast<unsigned char>(v.integerValue());
      appendPrinted(out, printfFormat + "c", ch);
      return;
    }
    case 'd':
    case 'i':
      appendPrinted(out, printfFormat + "ll" + c.conversion, signedOfLength(args.next().integerValue(), c.length));
      return;
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      appendPrinted(out, printfFormat + "ll" + c.conversion, unsignedOfLength(args.next().integerValue(), c.length));
      return;
    default:  // the reals
      appendPrinted(out, printfFormat + c.conversion, args.next().doubleValue());
      return;
  }
}

}  // namespace

std::string formatValues(std::string_view fmt, std::span<const Value> values) {
  std::string out;
  out.reserve(fmt.size() + 16 * values.size());
  Arguments args(values);
  size_t i = 0;
  while (i < fmt.size()) {
    size_t percent = fmt.find('%', i);
    if (percent == std::string_view::npos) {
      out.append(fmt.substr(i));
      break;
    }
    out.append(fmt.substr(i, percent - i));
    Conversion c;
    if (!parseConversion(fmt, percent, c)) {
      // Written as it stands: the '%' here, the rest as plain text.
      out += '%';
      i = percent + 1;
      continue;
    }
    appendConversion(out, c, args);
    i = c.end;
  }
  return out;
}

}  // namespace quillet::platform
