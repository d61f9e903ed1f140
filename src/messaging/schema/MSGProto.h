#pragma once

// The wire-format library's message base and coded streams under the relay's
// own names, so that the rest of the messaging code names only these.
#include <protobuf/io/coded_stream.h>
#include <protobuf/message.h>

#include <protobuf/port_def.inc>

namespace quillet::messaging {

using MSGProtoMessage = ::PROTOBUF_NAMESPACE_ID::Message;
using MSGCodedOutputStream = ::PROTOBUF_NAMESPACE_ID::io::CodedOutputStream;

}  // namespace quillet::messaging

#include <protobuf/port_undef.inc>
