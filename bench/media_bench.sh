#!/usr/bin/env bash
# Media preview timing on generated files: a 10 s WAV, a 10 s MP3 and a
# 10 s video. Needs a build with -DQUORVANE_BENCH=ON and gst-launch-1.0.
#   bench/media_bench.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
gst-launch-1.0 -q audiotestsrc num-buffers=431 ! audio/x-raw,rate=44100,channels=2,format=S16LE ! wavenc ! filesink location="$work/tone.wav"
gst-launch-1.0 -q audiotestsrc num-buffers=431 ! audio/x-raw,rate=44100,channels=2 ! lamemp3enc ! filesink location="$work/tone.mp3"
gst-launch-1.0 -q videotestsrc num-buffers=150 ! video/x-raw,width=320,height=240,framerate=15/1 ! jpegenc ! avimux ! filesink location="$work/clip.avi"
"$build/bench/media_latency_bench" "$work/tone.wav" "$work/tone.mp3" "$work/clip.avi" 2> >(grep -v -E 'ALSA|AL lib|Pulse|Failed to connect' >&2)
