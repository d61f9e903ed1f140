#include "platform/media/MediaSource.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libavutil/error.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>

#include "platform/media/MediaError.h"
#include "platform/text/PercentEscape.h"

namespace quillet::platform {
namespace {

// A read over the network that stalls longer than this fails (microseconds).
constexpr const char* kReadTimeoutMicroseconds = "10000000";

std::string averrorText(int averror) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(averror, text, sizeof text);
  return text;
}

// The library's own messages stay off standard error: every failure comes
// back to the caller as an error value and is logged there.
void initialiseLibrariesOnce() {
  static std::once_flag once;
  std::call_once(once, [] {
    av_log_set_level(AV_LOG_QUIET);
    avformat_network_init();
  });
}

int interruptRequested(void* opaque) {
  const auto* abort = static_cast<const std::atomic<bool>*>(opaque);
  return abort != nullptr && abort->load() ? 1 : 0;
}

// What the demuxer opens for a URL text: file:// URLs become plain paths
// with their escapes decoded; any other "scheme://" goes as it stands.
std::optional<std::string> locationFor(const std::string& url) {
  constexpr std::string_view kFileScheme = "file://";
  if (url.rfind(kFileScheme, 0) == 0) {
    const size_t pathStart = url.find('/', kFileScheme.size());
    if (pathStart == std::string::npos) return std::nullopt;
    auto path = PercentEscape::unescape(std::string_view(url).substr(pathStart));
    if (!path) return std::nullopt;
    return "file:" + *path;
  }
  if (url.find("://") != std::string::npos) return url;
  std::string location = "file:";
  location += url;
  return location;
}

// Demuxers of still pictures: these are not timed media.
bool isStillPictureFormat(std::string_view name) {
  constexpr std::string_view kPipe = "_pipe";
  return name == "image2" || name == "gif" || name == "apng" || name == "webp" ||
         (name.size() > kPipe.size() && name.substr(name.size() - kPipe.size()) == kPipe);
}

AVCodecContext* openDecoder(const AVStream* stream) {
  const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
  if (codec == nullptr) return nullptr;
  AVCodecContext* context = avcodec_alloc_context3(codec);
  if (context == nullptr) return nullptr;
  context->pkt_timebase = stream->time_base;
  context->thread_count = 1;
  if (avcodec_parameters_to_context(context, stream->codecpar) < 0 || avcodec_open2(context, codec, nullptr) < 0) {
    avcodec_free_context(&context);
  }
  return context;
}

int displayRotationOf(const AVStream* stream) {
  size_t size = 0;
  const uint8_t* matrix = av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
  if (matrix == nullptr || size < 9 * sizeof(int32_t)) return 0;
  const double angle = av_display_rotation_get(reinterpret_cast<const int32_t*>(matrix));
  if (std::isnan(angle)) return 0;
  const long degrees = ((std::lround(angle) % 360) + 360) % 360;
  return static_cast<int>(((degrees + 45) / 90 * 90) % 360);
}

}  // namespace

std::unique_ptr<MediaSource> MediaSource::open(const std::string& url, const std::atomic<bool>* abort, Error* error) {
  initialiseLibrariesOnce();
  std::unique_ptr<MediaSource> source(new MediaSource());
  source->abort_ = abort;
  auto location = locationFor(url);
  if (!location) {
    setMediaError(error, kMediaErrorCannotOpen, "cannot open " + url + ": not a file or network URL");
    return nullptr;
  }
  source->location_ = *location;

  source->format_ = avformat_alloc_context();
  if (source->format_ == nullptr) {
    setMediaError(error, kMediaErrorCannotOpen, "cannot open " + url + ": out of memory");
    return nullptr;
  }
  source->format_->interrupt_callback.callback = interruptRequested;
  source->format_->interrupt_callback.opaque = const_cast<std::atomic<bool>*>(abort);
  AVDictionary* options = nullptr;
  av_dict_set(&options, "rw_timeout", kReadTimeoutMicroseconds, 0);
  // On failure the context is freed and the pointer cleared.
  int rc = avformat_open_input(&source->format_, source->location_.c_str(), nullptr, &options);
  av_dict_free(&options);
  if (rc < 0) {
    source->fail(error, kMediaErrorCannotOpen, "cannot open " + url, rc);
    return nullptr;
  }
  if (isStillPictureFormat(source->format_->iformat->name)) {
    setMediaError(error, kMediaErrorNotPlayable, url + " is a still picture, not a timed medium");
    return nullptr;
  }
  rc = avformat_find_stream_info(source->format_, nullptr);
  if (rc < 0) {
    source->fail(error, kMediaErrorCannotOpen, "cannot read the streams of " + url, rc);
    return nullptr;
  }
  if (!source->openStreams(error)) return nullptr;
  return source;
}

bool MediaSource::openStreams(Error* error) {
  for (unsigned i = 0; i < format_->nb_streams; ++i) {
    const AVStream* stream = format_->streams[i];
    const AVCodecParameters* parameters = stream->codecpar;
    if (parameters->codec_type == AVMEDIA_TYPE_VIDEO && video_ == nullptr &&
        (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0 && parameters->width > 0 && parameters->height > 0) {
      video_ = openDecoder(stream);
      if (video_ != nullptr) {
        videoIndex_ = static_cast<int>(i);
        rotation_ = displayRotationOf(stream);
      }
    } else if (parameters->codec_type == AVMEDIA_TYPE_AUDIO && audio_ == nullptr && parameters->sample_rate > 0 &&
               parameters->ch_layout.nb_channels > 0) {
      audio_ = openDecoder(stream);
      if (audio_ != nullptr) audioIndex_ = static_cast<int>(i);
    }
  }
  if (video_ == nullptr && audio_ == nullptr) {
    setMediaError(error, kMediaErrorNotPlayable, location_ + " has no video or audio stream that can be decoded");
    return false;
  }
  if (format_->duration != AV_NOPTS_VALUE && format_->duration > 0) {
    duration_ = static_cast<double>(format_->duration) / AV_TIME_BASE;
  } else {
    for (int index : {videoIndex_, audioIndex_}) {
      if (index < 0) continue;
      const AVStream* stream = format_->streams[index];
      if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0) {
        duration_ = std::max(duration_, static_cast<double>(stream->duration) * av_q2d(stream->time_base));
      }
    }
  }
  packet_ = av_packet_alloc();
  frame_ = av_frame_alloc();
  if (packet_ == nullptr || frame_ == nullptr) {
    setMediaError(error, kMediaErrorDecodeFailed, "out of memory");
    return false;
  }
  return true;
}

MediaSource::~MediaSource() {
  sws_freeContext(scaler_);
  av_frame_free(&frame_);
  av_packet_free(&packet_);
  avcodec_free_context(&video_);
  avcodec_free_context(&audio_);
  avformat_close_input(&format_);
}

void MediaSource::fail(Error* error, int code, const std::string& what, int averror) const {
  if (abort_ != nullptr && abort_->load()) {
    setMediaError(error, kMediaErrorCancelled, what + ": cancelled");
  } else {
    setMediaError(error, static_cast<MediaErrorCode>(code), what + ": " + averrorText(averror));
  }
}

double MediaSource::timeOf(const AVFrame* frame, int streamIndex) const {
  int64_t stamp = frame->best_effort_timestamp;
  if (stamp == AV_NOPTS_VALUE) stamp = frame->pts;
  if (stamp == AV_NOPTS_VALUE) return 0;
  const double start =
      format_->start_time == AV_NOPTS_VALUE ? 0.0 : static_cast<double>(format_->start_time) / AV_TIME_BASE;
  return static_cast<double>(stamp) * av_q2d(format_->streams[streamIndex]->time_base) - start;
}

bool MediaSource::seek(double seconds, Error* error) {
  const int index = videoIndex_ >= 0 ? videoIndex_ : audioIndex_;
  const AVStream* stream = format_->streams[index];
  const double start =
      format_->start_time == AV_NOPTS_VALUE ? 0.0 : static_cast<double>(format_->start_time) / AV_TIME_BASE;
  const auto stamp = static_cast<int64_t>(std::llround((std::max(seconds, 0.0) + start) / av_q2d(stream->time_base)));
  const int rc = av_seek_frame(format_, index, stamp, AVSEEK_FLAG_BACKWARD);
  if (rc < 0) {
    fail(error, kMediaErrorDecodeFailed, "cannot seek in " + location_, rc);
    return false;
  }
  if (video_ != nullptr) avcodec_flush_buffers(video_);
  if (audio_ != nullptr) avcodec_flush_buffers(audio_);
  draining_ = false;
  return true;
}

bool MediaSource::receive(AVCodecContext* decoder, MediaFrame* out, Error* error, bool* failed) {
  const int rc = avcodec_receive_frame(decoder, frame_);
  if (rc == AVERROR(EAGAIN) || rc == AVERROR_EOF) return false;
  if (rc < 0) {
    *failed = true;
    fail(error, kMediaErrorDecodeFailed, "cannot decode " + location_, rc);
    return false;
  }
  out->isVideo = decoder == video_;
  out->time = timeOf(frame_, out->isVideo ? videoIndex_ : audioIndex_);
  out->frame = frame_;
  return true;
}

MediaSource::Read MediaSource::nextFrame(MediaFrame* out, Error* error) {
  while (true) {
    if (abort_ != nullptr && abort_->load()) {
      setMediaError(error, kMediaErrorCancelled, "reading " + location_ + ": cancelled");
      return Read::Failed;
    }
    // Frames the decoders already hold come first, then a new packet.
    bool failed = false;
    for (AVCodecContext* decoder : {video_, audio_}) {
      if (decoder != nullptr && receive(decoder, out, error, &failed)) return Read::Frame;
      if (failed) return Read::Failed;
    }
    if (draining_) return Read::End;
    int rc = av_read_frame(format_, packet_);
    if (rc == AVERROR_EOF) {
      draining_ = true;
      for (AVCodecContext* decoder : {video_, audio_}) {
        if (decoder != nullptr) avcodec_send_packet(decoder, nullptr);
      }
      continue;
    }
    if (rc < 0) {
      fail(error, kMediaErrorDecodeFailed, "cannot read " + location_, rc);
      return Read::Failed;
    }
    AVCodecContext* decoder = packet_->stream_index == videoIndex_   ? video_
                              : packet_->stream_index == audioIndex_ ? audio_
                                                                     : nullptr;
    if (decoder != nullptr) rc = avcodec_send_packet(decoder, packet_);
    av_packet_unref(packet_);
    if (decoder != nullptr && rc < 0 && rc != AVERROR(EAGAIN)) {
      fail(error, kMediaErrorDecodeFailed, "cannot decode " + location_, rc);
      return Read::Failed;
    }
  }
}

std::shared_ptr<Bitmap> MediaSource::rgbaBitmap(const AVFrame* frame, Error* error) {
  if (frame == nullptr || frame->width <= 0 || frame->height <= 0) {
    setMediaError(error, kMediaErrorDecodeFailed, "no picture to convert");
    return nullptr;
  }
  const int width = frame->width;
  const int height = frame->height;
  scaler_ = sws_getCachedContext(scaler_, width, height, static_cast<AVPixelFormat>(frame->format), width, height,
                                 AV_PIX_FMT_RGBA, SWS_BILINEAR, nullptr, nullptr, nullptr);
  if (scaler_ == nullptr) {
    setMediaError(error, kMediaErrorDecodeFailed, "cannot convert the pictures of " + location_ + " to RGBA");
    return nullptr;
  }
  // The converter writes into an aligned, padded frame; rows are then packed.
  std::unique_ptr<AVFrame, void (*)(AVFrame*)> rgba(av_frame_alloc(), [](AVFrame* f) { av_frame_free(&f); });
  if (!rgba) {
    setMediaError(error, kMediaErrorDecodeFailed, "out of memory");
    return nullptr;
  }
  rgba->format = AV_PIX_FMT_RGBA;
  rgba->width = width;
  rgba->height = height;
  int rc = av_frame_get_buffer(rgba.get(), 0);
  if (rc >= 0) rc = sws_scale(scaler_, frame->data, frame->linesize, 0, height, rgba->data, rgba->linesize);
  if (rc < 0) {
    fail(error, kMediaErrorDecodeFailed, "cannot convert a picture of " + location_, rc);
    return nullptr;
  }
  auto bitmap = std::make_shared<Bitmap>();
  bitmap->width = width;
  bitmap->height = height;
  bitmap->componentsPerPixel = 4;
  bitmap->bitsPerComponent = 8;
  bitmap->pixels.resize(bitmap->bytesPerRow() * static_cast<size_t>(height));
  for (int row = 0; row < height; ++row) {
    std::memcpy(bitmap->pixels.data() + bitmap->bytesPerRow() * row,
                rgba->data[0] + static_cast<ptrdiff_t>(rgba->linesize[0]) * row, bitmap->bytesPerRow());
  }
  return bitmap;
}

}  // namespace quillet::platform
