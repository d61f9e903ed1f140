#include "platform/data/Gzip.h"

#include <zlib.h>

#include <algorithm>
#include <string>

#include "platform/data/DataError.h"

namespace quillet::platform {
namespace {

constexpr int kGzipWindowBits = 15 + 16;        // deflate window 32 KiB, gzip wrapper
constexpr int kAutoDetectWindowBits = 15 + 32;  // gzip or zlib, from the header
constexpr size_t kChunk = 64 * 1024;
constexpr size_t kMaxInput = 0xFFFFFFFFu;  // zlib counts input in 32 bits

void setZlibError(Error* error, int code, const z_stream& stream, const char* what) {
  std::string message = std::string(what) + ": " + (stream.msg ? stream.msg : zError(code));
  setDataError(error, kGzipErrorDomain, code, message);
}

}  // namespace

std::optional<std::vector<uint8_t>> Gzip::compress(std::span<const uint8_t> data, int level, Error* error) {
  if (data.size() > kMaxInput) {
    setDataError(error, kGzipErrorDomain, Z_BUF_ERROR, "Data too large to compress in one piece");
    return std::nullopt;
  }
  z_stream stream{};
  int rc = deflateInit2(&stream, level, Z_DEFLATED, kGzipWindowBits, 8, Z_DEFAULT_STRATEGY);
  if (rc != Z_OK) {
    setZlibError(error, rc, stream, "Cannot start compression");
    return std::nullopt;
  }
  std::vector<uint8_t> out(deflateBound(&stream, static_cast<uLong>(data.size())));
  stream.next_in = const_cast<Bytef*>(data.data());
  stream.avail_in = static_cast<uInt>(data.size());
  stream.next_out = out.data();
  stream.avail_out = static_cast<uInt>(out.size());
  rc = deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  if (rc != Z_STREAM_END) {
    setZlibError(error, rc, stream, "Cannot compress");
    return std::nullopt;
  }
  return out;
}

std::optional<std::vector<uint8_t>> Gzip::compress(std::string_view data, int level, Error* error) {
  return compress(std::span(reinterpret_cast<const uint8_t*>(data.data()), data.size()), level, error);
}

std::optional<std::vector<uint8_t>> Gzip::inflate(std::span<const uint8_t> data, size_t maxOutput, Error* error) {
  if (data.empty() || data.size() > kMaxInput) {
    setDataError(error, kGzipErrorDomain, Z_DATA_ERROR, "Cannot inflate empty or oversized data");
    return std::nullopt;
  }
  z_stream stream{};
  int rc = inflateInit2(&stream, kAutoDetectWindowBits);
  if (rc != Z_OK) {
    setZlibError(error, rc, stream, "Cannot start inflation");
    return std::nullopt;
  }
  stream.next_in = const_cast<Bytef*>(data.data());
  stream.avail_in = static_cast<uInt>(data.size());
  std::vector<uint8_t> out;
  while (rc == Z_OK) {
    if (out.size() >= maxOutput) {
      // At the limit: the stream may only end now, without another byte.
      uint8_t probe = 0;
      stream.next_out = &probe;
      stream.avail_out = 1;
      rc = ::inflate(&stream, Z_NO_FLUSH);
      if (rc == Z_STREAM_END && stream.avail_out == 1) break;
      inflateEnd(&stream);
      setDataError(error, kGzipErrorDomain, -100, "Inflated data exceeds " + std::to_string(maxOutput) + " bytes");
      return std::nullopt;
    }
    size_t before = out.size();
    size_t room = std::min(kChunk, maxOutput - before);
    out.resize(before + room);
    stream.next_out = out.data() + before;
    stream.avail_out = static_cast<uInt>(room);
    rc = ::inflate(&stream, Z_NO_FLUSH);
    out.resize(before + room - stream.avail_out);
    // No progress with input left means the stream is truncated.
    if (rc == Z_BUF_ERROR && stream.avail_out != 0) break;
    if (rc == Z_BUF_ERROR) rc = Z_OK;
  }
  bool trailing = rc == Z_STREAM_END && stream.avail_in != 0;
  if (rc != Z_STREAM_END || trailing) {
    if (trailing) {
      setDataError(error, kGzipErrorDomain, -101, "Data continues after the end of the compressed stream");
    } else {
      setZlibError(error, rc == Z_OK || rc == Z_BUF_ERROR ? Z_DATA_ERROR : rc, stream,
                   rc == Z_BUF_ERROR ? "Compressed data is truncated" : "Cannot inflate");
    }
    inflateEnd(&stream);
    return std::nullopt;
  }
  inflateEnd(&stream);
  return out;
}

bool Gzip::isGzip(std::span<const uint8_t> data) { return data.size() >= 2 && data[0] == 0x1f && data[1] == 0x8b; }

}  // namespace quillet::platform
