#!/usr/bin/env bash
# Installs what is missing, builds, and starts the reference host on its built-in sample scenario.
# Extra arguments go to the host (see README.md: --scenario, --plugins, --screenshot, ...).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
export QTWEBENGINE_DISABLE_SANDBOX=1
if [[ -z "${DISPLAY:-}" && -z "${WAYLAND_DISPLAY:-}" && -z "${QT_QPA_PLATFORM:-}" ]]; then
  echo "No display found: starting the host under Xvfb (use --screenshot FILE to see it)." >&2
  exec xvfb-run -a -s "-screen 0 1280x800x24" "$root/build/bin/newsReaderHost" "$@"
fi
exec "$root/build/bin/newsReaderHost" "$@"
