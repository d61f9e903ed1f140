#pragma once

#include <cstdint>
#include <string>

namespace quillet::platform {

// The text the phone's number objects give for a real: the shortest digits
// that read back to the same double, laid out as "%g" would with 17 digits of
// precision (fixed for exponents -4..16, else "1e+20" / "1e-05"); whole reals
// lose their fraction ("3"), and the non-finite give "inf", "-inf", "nan".
std::string doubleText(double value);

// Count of UTF-16 code units of a UTF-8 text (the length the phone's strings
// report); a byte that does not start a well-formed sequence counts as one.
size_t utf16Length(const std::string& text);

}  // namespace quillet::platform
