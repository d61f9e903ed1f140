# Short videos made at build time with the ffmpeg tool: the news server's
# video stories (target news_videos, in ${QUILLET_VIDEOS_DIR}) and the media
# facility's test videos (target media_test_videos, in ${QUILLET_TEST_VIDEOS_DIR}).
# Each is two seconds or less, 160x120 at 10 frames a second, MPEG-4 video
# (a built-in encoder) in an MP4 container with its index at the front, so
# that a reader over HTTP can start at once.
find_program(FFMPEG_PROGRAM ffmpeg REQUIRED)

set(QUILLET_VIDEOS_DIR ${CMAKE_BINARY_DIR}/resources/videos)
set(QUILLET_TEST_VIDEOS_DIR ${CMAKE_BINARY_DIR}/tests/videos)

set(QUILLET_VIDEO_CODEC -pix_fmt yuv420p -c:v mpeg4 -q:v 4)
set(QUILLET_AUDIO_CODEC -c:a aac -b:a 32k -shortest)

# quillet_video(<output file> [TURN <degrees>] ARGS <ffmpeg inputs and codec arguments>)
# TURN stores a display rotation ("rotate" tag, written as a display matrix
# by a second, copying pass). Appends the output to QUILLET_VIDEO_OUTPUTS.
macro(quillet_video output)
  cmake_parse_arguments(VIDEO "" "TURN" "ARGS" ${ARGN})
  get_filename_component(video_dir ${output} DIRECTORY)
  if(VIDEO_TURN)
    add_custom_command(OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${video_dir}
      COMMAND ${FFMPEG_PROGRAM} -y -loglevel error ${VIDEO_ARGS} ${output}.upright.mp4
      COMMAND ${FFMPEG_PROGRAM} -y -loglevel error -i ${output}.upright.mp4 -c copy
              -metadata:s:v:0 rotate=${VIDEO_TURN} -movflags +faststart ${output}
      COMMAND ${CMAKE_COMMAND} -E rm -f ${output}.upright.mp4
      DEPENDS ${CMAKE_CURRENT_LIST_FILE}
      VERBATIM)
  else()
    add_custom_command(OUTPUT ${output}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${video_dir}
      COMMAND ${FFMPEG_PROGRAM} -y -loglevel error ${VIDEO_ARGS} -movflags +faststart ${output}
      DEPENDS ${CMAKE_CURRENT_LIST_FILE}
      VERBATIM)
  endif()
  list(APPEND QUILLET_VIDEO_OUTPUTS ${output})
endmacro()

# The news server's stories name these files (resources/backend/news/seed.json).
set(QUILLET_VIDEO_OUTPUTS)
set(picture "size=160x120:rate=10:duration=2")
quillet_video(${QUILLET_VIDEOS_DIR}/6.mp4 ARGS -f lavfi -i testsrc=${picture} ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/12.mp4 ARGS -f lavfi -i testsrc2=${picture}
              -f lavfi -i sine=frequency=440:duration=2 ${QUILLET_VIDEO_CODEC} ${QUILLET_AUDIO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/24.mp4 ARGS -f lavfi -i smptebars=${picture} ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/30.mp4 ARGS -f lavfi -i rgbtestsrc=${picture} ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/42.mp4 TURN 90 ARGS -f lavfi -i testsrc=${picture} ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/48.mp4 ARGS -f lavfi -i testsrc2=${picture} ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_VIDEOS_DIR}/60.mp4 ARGS -f lavfi -i smptehdbars=${picture}
              -f lavfi -i sine=frequency=660:duration=2 ${QUILLET_VIDEO_CODEC} ${QUILLET_AUDIO_CODEC})
add_custom_target(news_videos DEPENDS ${QUILLET_VIDEO_OUTPUTS})

# Test videos whose pictures are known: colours.mp4 is red for its first
# half second and green after; halves.mp4 is red above blue, stored with a
# display rotation; tone.mp4 is a picture with a sine tone.
set(QUILLET_VIDEO_OUTPUTS)
set(half "size=160x60:rate=10:duration=1")
quillet_video(${QUILLET_TEST_VIDEOS_DIR}/colours.mp4 ARGS
              -f lavfi -i color=c=red:size=160x120:rate=10:duration=0.5
              -f lavfi -i color=c=lime:size=160x120:rate=10:duration=1.5
              -filter_complex concat=n=2:v=1:a=0 ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_TEST_VIDEOS_DIR}/halves.mp4 TURN 90 ARGS
              -f lavfi -i color=c=red:${half} -f lavfi -i color=c=blue:${half}
              -filter_complex vstack ${QUILLET_VIDEO_CODEC})
quillet_video(${QUILLET_TEST_VIDEOS_DIR}/tone.mp4 ARGS -f lavfi -i color=c=white:${picture}
              -f lavfi -i sine=frequency=440:duration=2 ${QUILLET_VIDEO_CODEC} ${QUILLET_AUDIO_CODEC})
add_custom_target(media_test_videos DEPENDS ${QUILLET_VIDEO_OUTPUTS})
