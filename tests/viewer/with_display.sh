#!/usr/bin/env bash
# Runs a program of windows on a display of its own, with Mesa's software driver.
#
#     with_display.sh PROGRAM [ARGUMENT...]
#
# The display is large enough that no window is cut off, and has no window manager.
set -euo pipefail

command -v xvfb-run >/dev/null || {
  echo "with_display.sh: there is no xvfb-run; install xvfb and xauth (scripts/setup.sh test does)" >&2
  exit 1
}
export QT_QPA_PLATFORM=xcb QT_XCB_GL_INTEGRATION=xcb_glx LIBGL_ALWAYS_SOFTWARE=1
# Windows look the same whatever the desktop that runs the tests.
export QT_STYLE_OVERRIDE=Fusion QT_SCALE_FACTOR=${QT_SCALE_FACTOR:-1} LC_ALL=C.UTF-8
unset QT_QPA_PLATFORMTHEME QT_FONT_DPI
# libxkbcommon copies names that no zero byte ends, by their length.
export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}strict_string_checks=0
scale=$QT_SCALE_FACTOR # a whole number: so many pixels of the display are one of a window
exec xvfb-run --auto-servernum \
  --server-args="-screen 0 $((1600 * scale))x$((1200 * scale))x24 -dpi 96 -noreset" "$@"
